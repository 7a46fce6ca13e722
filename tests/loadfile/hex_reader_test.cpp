// The four text readers: what they make of good files, and the message and line of
// every fault they report.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "loadfile/load_file_formats.h"
#include "tests/loadfile/load_file_dump.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::dumpSections;
using testing::ScratchFolder;

struct ReadCase {
  const char* what;
  LoadFileFormat format;
  std::string text;
  std::string expected;  // the dump of the sections, or the failure's text
};

std::string readOutcome(LoadFileFormat format, const std::string& text) {
  ScratchFolder folder;
  std::string path = folder.write("input", text);
  std::string dump;
  std::string failure = testing::thrownText([&] { dump = dumpSections(*loadLoadFile(format, path)); });
  return failure == "no exception" ? dump : failure;
}

void check(const std::vector<ReadCase>& cases) {
  for (const ReadCase& c : cases) EXPECT_EQ(readOutcome(c.format, c.text), c.expected) << c.what;
}

constexpr auto kIntel = LoadFileFormat::IntelHex;
constexpr auto kSRecord = LoadFileFormat::SRecord;
constexpr auto kTI = LoadFileFormat::TIHex;
constexpr auto kList = LoadFileFormat::HexList;
const std::string kIntelEnd = ":00000001FF\n";

TEST(HexReaders, IntelRecordsPlaceDataAndMergeOnlyWhatContinues) {
  check({
      {"adjacent records make one section", kIntel,
       ":03123400AABBCC86\n:01123700DDD9\n" + kIntelEnd, "00001234: AA BB CC DD\n"},
      {"a gap makes two", kIntel, ":03123400AABBCC86\n:01123800DDD8\n" + kIntelEnd,
       "00001234: AA BB CC\n00001238: DD\n"},
      {"a segment adds its value times 16", kIntel, ":020000021000EC\n:02001000ABCD76\n" + kIntelEnd,
       "00010010: AB CD\n"},
      {"segment and linear values add up", kIntel,
       ":020000040001F9\n:020000021000EC\n:02001000ABCD76\n" + kIntelEnd, "00020010: AB CD\n"},
      {"start linear address", kIntel, ":0400000508000101ED\n" + kIntelEnd, "entry 08000101\n"},
      {"start segment address is taken whole", kIntel, ":0400000312345678E5\n" + kIntelEnd, "entry 12345678\n"},
      {"lower-case digits, CRLF ends and lines behind the end", kIntel,
       ":03123400aabbcc86\r\n:00000001ff\r\nanything\n", "00001234: AA BB CC\n"},
      {"an unknown type reads no data", kIntel, ":00000006FA\n" + kIntelEnd, ""},
      {"the longest line that fits the buffer, CRLF dropped", kIntel,
       ":00000001FF" + std::string(517, ' ') + "\r\n", ""},
  });
}

TEST(HexReaders, IntelFaultsNameTheirLine) {
  check({
      {"no end record", kIntel, ":0100000001FE\n", "invalid end of file in hex file : line 2"},
      {"no colon", kIntel, ":0100000001FE\n0100000001FE\n", "missing record mark in hex file : line 2"},
      {"bad digit", kIntel, ":01000000G1FE\n", "invalid ASCII encoded byte : line 1"},
      {"record longer than its line", kIntel, ":10000000 01\n", "invalid ASCII encoded byte : line 1"},
      {"checksum", kIntel, ":0100000001FF\n", "invalid checksum : line 1"},
      {"a record beyond the line buffer", kIntel, ":" + std::string(529, '0') + "\n",
       "line too long : line 1"},
  });
}

TEST(HexReaders, SRecordsPlaceDataCountRecordsAndNeedNoEnd) {
  check({
      {"S1 records merge; no end record needed", kSRecord,
       "S0030000FC\nS1060100010203F2\nS104010304F3\n", "00000100: 01 02 03 04\n"},
      {"S2 and S3 address widths", kSRecord, "S206100000BEEF3C\nS30708000000DEAD65\n",
       "00100000: BE EF\n08000000: DE AD\n"},
      {"a correct count", kSRecord, "S1060100010203F2\nS104010304F3\nS5030002FA\n",
       "00000100: 01 02 03 04\n"},
      {"S7 entry point", kSRecord, "S70508000101F0\n", "entry 08000101\n"},
      {"S8 entry point", kSRecord, "S8041234565F\n", "entry 00123456\n"},
      {"S9 entry point", kSRecord, "S90356782E\n", "entry 00005678\n"},
      {"S4 reads its checksum right behind the count", kSRecord, "S401FE\n", ""},
  });
}

TEST(HexReaders, SRecordFaultsNameTheirLine) {
  check({
      {"wrong count", kSRecord, "S1060100010203F2\nS104010304F3\nS5030003F9\n",
       "incorrect data record count : line 3"},
      {"no S", kSRecord, "S104010304F3\nX104010304F3\n", "no leading 'S' character : line 2"},
      {"checksum", kSRecord, "S104010304F4\n", "invalid checksum : line 1"},
      {"count beyond the line", kSRecord, "S1FF0100\n", "invalid ASCII encoded byte : line 1"},
      // An S6 record (a 24-bit count) carries nothing this reader reads, so its
      // first count byte stands where the checksum is expected.
      {"S6 count", kSRecord, "S1060100010203F2\nS604000002F9\n", "invalid checksum : line 2"},
  });
}

TEST(HexReaders, TITextFollowsAddressLinesAndEndsAtQ) {
  check({
      {"lines continue their address", kTI, "@0100\n01 02 03\n04\nq\n", "00000100: 01 02 03 04\n"},
      {"a new address starts a section", kTI, "@0100\n01 02\n@00000200\naa bb\r\nq\n",
       "00000100: 01 02\n00000200: AA BB\n"},
      {"a trailing blank and a final line without its line feed", kTI, "@08000000\n01 02 \nq",
       "08000000: 01 02\n"},
      {"an address stops at a control character", kTI, "@10\t99\n01\nq\n", "00000010: 01\n"},
      {"a character that is no digit counts as 0", kTI, "@1G\n01\nq\n", "00000010: 01\n"},
  });
}

TEST(HexReaders, TITextFaultsNameTheirLine) {
  check({
      {"no q", kTI, "@0100\n01 02\n", "unexpected end of file : line 3"},
      {"bad digit", kTI, "@0100\n01 0Z\nq\n", "invalid ASCII encoded byte : line 2"},
      {"a line beyond its buffer", kTI, "@0100\n" + std::string(21 * 3, '0') + "\nq\n", "line too long : line 2"},
  });
}

TEST(HexListReader, ReadsAddressesAndBytesAndRefusesBadLines) {
  check({
      {"lines", kList, "00000100 01 02\n00000102 03\n10000000 FF\n", "00000100: 01 02 03\n10000000: FF\n"},
      {"short line", kList, "00000100 01\n0100\n", "invalid address : line 2"},
      {"empty line", kList, "\n", "invalid address : line 1"},
      {"separator", kList, "00000100-01\n", "invalid seperator : line 1"},
  });
}

TEST(HexReaders, OpenFailuresCarryThePathAndNoLine) {
  ScratchFolder folder;
  for (LoadFileFormat format : {kIntel, kSRecord, kTI, kList})
    for (const std::string& path : {folder.file("missing"), folder.path().string()})
      EXPECT_EQ(testing::thrownText([&] { loadLoadFile(format, path); }), "cannot open " + path);
}

}  // namespace
}  // namespace regmill
