#include "readers/ddf_reader.h"

#include <gtest/gtest.h>

#include "memorymap/svd_file.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

using testing::writtenText;

using namespace std::string_literals;

std::string convert(const std::string& contents) {
  testing::ScratchFolder folder;
  SVDFile document;
  EXPECT_TRUE(readDDF(folder.write("in.ddf", contents).c_str(), document));
  return writtenText(document);
}

TEST(ReadersDDF, FirstTokenThatGivesAWidthPlacesTheField) {
  using Values = std::vector<std::string>;
  const std::pair<const char*, Values> cases[] = {
      {"bitRange=3", {"3 1"}}, {"bitRange=8-15", {"8 8"}}, {"bitMask=0x30", {"4 2"}}, {"bitMask=0x80000000", {"31 1"}},
      {"bitMask=0, bitRange=2", {"2 1"}}, {"bitRange=1, bitMask=0xF0", {"1 1"}}, {"bitMask=0", {}}, {"bitRange=15-8", {}},
      {"bitRange=0-4294967295", {}}};  // a width that wraps to 0 gives no field
  testing::ScratchFolder folder;
  for (const auto& [tokens, expected] : cases) {
    SVDFile document;
    std::string text = "sfr = R, Memory, 0, 4\nsfr = R.F, Memory, 0, 4, "s + tokens + "\ngroup = G, R\n";
    ASSERT_TRUE(readDDF(folder.write("in.ddf", text).c_str(), document));
    EXPECT_EQ(testing::attributeValues(document.root(), "BitField", {"start", "size"}), expected) << tokens;
  }
}

TEST(ReadersDDF, LinesTokensAndGroups) {
  // ";" first and "//" anywhere pass a line over; a blank doesn't end a token, a tab
  // does. A group takes the first complete register of each name it lists that no
  // earlier group took, and starts at their lowest address in any base, or at
  // 0xffffffff without one. A field goes to the last register read, even an incomplete
  // one; before any it is dropped. The last line, without a line feed, loses its last token.
  EXPECT_EQ(convert("; sfr = C1, Memory, 0x10, 4\n"
                    "sfr = C2, Memory, 0x20, 4 // note\n"
                    "sfr = X.EARLY, Memory, 0, 4, bitRange=0\n"
                    "sfr = \"UART CR\"\tRegister\t0x3000\t4\r\n"
                    "sfr = LO, Memory, 4096, 1\n"
                    "sfr = SHORT, Port, 0x4, 4\n"
                    "sfr = SHORT.F, Memory, 0x4, 4, bitRange=2\n"
                    "sfr = LO, Memory, 0x10, 1\n"
                    "sfr = FREE, Memory, 0x8, 4\n"
                    "group = G, C1, C2, MISSING, UART CR, LO\n"
                    "group = NONE, UART CR, SHORT, FREE"),
            "<Root>\n"
            "  <RegisterGroup name=\"G\" start=\"0x1000\">\n"
            "    <Register name=\"UART CR\" start=\"0x3000\" size=\"4\" />\n"
            "    <Register name=\"LO\" start=\"4096\" size=\"1\" />\n"
            "  </RegisterGroup>\n"
            "  <RegisterGroup name=\"NONE\" start=\"0xffffffff\" />\n"
            "</Root>\n");
}

}  // namespace
}  // namespace regmill
