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

using testing::ScratchFolder;

constexpr auto kIntel = LoadFileFormat::IntelHex;
constexpr auto kSRecord = LoadFileFormat::SRecord;
constexpr auto kTI = LoadFileFormat::TIHex;
constexpr auto kList = LoadFileFormat::HexList;
const std::string kEnd = ":00000001FF\n";

struct ReadCase {
  LoadFileFormat format;
  std::string text;
  std::string expected;  // the dump of the sections, or the failure's text
};

TEST(HexReaders, ReadEachFormatOrNameTheFaultAndItsLine) {
  const ReadCase cases[] = {
      // Intel HEX: only records that continue merge; segment and linear values add up.
      {kIntel, ":03123400AABBCC86\n:01123700DDD9\n:01123900EEC6\n" + kEnd, "00001234: AA BB CC DD\n00001239: EE\n"},
      {kIntel, ":020000040001F9\n:020000021000EC\n:02001000ABCD76\n" + kEnd, "00020010: AB CD\n"},
      {kIntel, ":0400000508000101ED\n" + kEnd, "entry 08000101\n"},
      {kIntel, ":0400000312345678E5\n" + kEnd, "entry 12345678\n"},  // a start segment is taken whole
      {kIntel, ":03123400aabbcc86\r\n:00000001ff\r\nanything\n", "00001234: AA BB CC\n"},
      {kIntel, ":00000006FA\n" + kEnd, ""},  // an unknown type reads no data
      {kIntel, ":00000001FF" + std::string(517, ' ') + "\r\n", ""},  // the longest line that fits
      {kIntel, ":" + std::string(529, '0') + "\n", "line too long : line 1"},
      {kIntel, ":0100000001FE\n", "invalid end of file in hex file : line 2"},
      {kIntel, ":0100000001FE\n0100000001FE\n", "missing record mark in hex file : line 2"},
      {kIntel, ":01000000G1FE\n", "invalid ASCII encoded byte : line 1"},
      {kIntel, ":10000000 01\n", "invalid ASCII encoded byte : line 1"},  // longer than its line
      {kIntel, ":0100000001FF\n", "invalid checksum : line 1"},
      // S-records: a right count, no end record needed; S4 and S6 carry nothing read,
      // so the checksum is taken right behind their count byte.
      {kSRecord, "S0030000FC\nS1060100010203F2\nS104010304F3\nS5030002FA\n", "00000100: 01 02 03 04\n"},
      {kSRecord, "S206100000BEEF3C\nS30708000000DEAD65\n", "00100000: BE EF\n08000000: DE AD\n"},
      {kSRecord, "S70508000101F0\n", "entry 08000101\n"},
      {kSRecord, "S8041234565F\n", "entry 00123456\n"},
      {kSRecord, "S90356782E\nS401FE\n", "entry 00005678\n"},
      {kSRecord, "S1060100010203F2\nS104010304F3\nS5030003F9\n", "incorrect data record count : line 3"},
      {kSRecord, "S104010304F3\nX104010304F3\n", "no leading 'S' character : line 2"},
      {kSRecord, "S104010304F4\n", "invalid checksum : line 1"},
      {kSRecord, "S1FF0100\n", "invalid ASCII encoded byte : line 1"},
      {kSRecord, "S1060100010203F2\nS604000002F9\n", "invalid checksum : line 2"},
      // TI text: lines continue their address; an address ends at a control character
      // and a character that is no digit counts as 0.
      {kTI, "@0100\n01 02\n03\n@00000200\naa bb\r\nq\n", "00000100: 01 02 03\n00000200: AA BB\n"},
      {kTI, "@1G\t99\n01\n@08000000\n01 02 \nq", "00000010: 01\n08000000: 01 02\n"},
      {kTI, "@0100\n01 02\n", "unexpected end of file : line 3"},
      {kTI, "@0100\n" + std::string(65536, '\n') + "01 0Z\nq\n", "invalid ASCII encoded byte : line 65538"},
      {kTI, "@0100\n" + std::string(21 * 3, '0') + "\nq\n", "line too long : line 2"},
      {kList, "00000100 01 02\n00000102 03\n10000000 FF\n", "00000100: 01 02 03\n10000000: FF\n"},
      {kList, "00000100 01\n\n", "invalid address : line 2"},
      {kList, "00000100-01\n", "invalid seperator : line 1"},
  };
  ScratchFolder folder;
  for (const ReadCase& c : cases) {
    std::string dump, path = folder.write("input", c.text);
    std::string failure = testing::thrownText([&] { dump = testing::dumpSections(*loadLoadFile(c.format, path)); });
    EXPECT_EQ(failure == "no exception" ? dump : failure, c.expected) << c.text.substr(0, 80);
  }
  for (LoadFileFormat format : {kIntel, kSRecord, kTI, kList})
    for (const std::string& path : {folder.file("missing"), folder.path().string()})
      EXPECT_EQ(testing::thrownText([&] { loadLoadFile(format, path); }), "cannot open " + path);
}

}  // namespace
}  // namespace regmill
