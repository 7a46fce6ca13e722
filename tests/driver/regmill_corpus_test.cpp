// Every real-world file of the shared corpus through the built converter: every SVD
// file with the default options and with a vector table and -ignore-name, every
// device header through -irqs2. A run either succeeds silently or, for a file that
// is no device description, fails with the read message; what it writes reads back
// with our parser and with xmllint.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"
#include "xml/xml_document.h"

namespace regmill {
namespace {

namespace fs = std::filesystem;
using testing::ProcessResult;
using testing::ScratchFolder;
using testing::runRegmill;

using testing::filesUnder;

const fs::path kCorpus = testing::corpusFolder("");

bool xmllintReads(const fs::path& file) {
  std::string command = "xmllint --noout '" + file.string() + "' 2>/dev/null";
  return std::system(command.c_str()) == 0;
}

// The output reads back with our parser and with xmllint; a map of an SVD file has
// relative register starts and only the four access words.
void expectReadableOutput(const fs::path& output, bool fromSVD = true) {
  XMLDocument document(false);
  EXPECT_TRUE(document.load(output.c_str())) << output << ": " << document.errorText();
  EXPECT_TRUE(xmllintReads(output)) << "xmllint refuses " << output;
  if (!fromSVD || document.root() == nullptr) return;
  for (XMLElement* reg : collectElements(document.root(), "Register", true)) {
    const char* access = reg->getAttribute("access");
    const std::set<std::string> accessWords{"Read/Write", "ReadOnly", "WriteOnly", "None"};
    ASSERT_EQ(reg->getAttribute("start")[0], '+') << output;
    ASSERT_TRUE(access != nullptr && accessWords.count(access) == 1) << output;
  }
}

bool isDeviceDocument(const fs::path& path) {
  XMLDocument document(true);
  return document.load(path.c_str()) && document.root() != nullptr &&
         document.root()->getName() == std::string("device");
}

class RegmillCorpus : public ::testing::Test {
 protected:
  void SetUp() override {
    REGMILL_SKIP_WITHOUT(kCorpus);
    REGMILL_SKIP_WITHOUT_PROGRAM("xmllint");
  }

  // Converts each SVD file under the folder with the extra options; returns how many
  // were refused as no SVD at all.
  int convertAll(const std::string& folder, const std::vector<std::string>& options) {
    int refused = 0;
    for (const fs::path& input : filesUnder(kCorpus / folder, ".svd")) {
      std::vector<std::string> arguments = options;
      arguments.push_back(input.string());
      arguments.push_back("out.xml");
      fs::remove(scratch_.file("out.xml"));
      ProcessResult result = runRegmill(arguments, scratch_.path());
      if (result.exitCode == 1 && result.err == "error: read of " + input.string() + " failed\n") {
        EXPECT_FALSE(scratch_.exists("out.xml")) << input;
        EXPECT_FALSE(isDeviceDocument(input)) << "a device description failed to convert: " << input;
        ++refused;
        continue;
      }
      EXPECT_EQ(result.exitCode, 0) << input << "\n" << result.err;
      EXPECT_EQ(result.err, "") << input;
      expectReadableOutput(scratch_.file("out.xml"));
    }
    return refused;
  }

  ScratchFolder scratch_;
};

const std::vector<std::string> kTableOptions{"-irq-table", "v", "-irq-start", "0", "-ignore-name", "RES"};

TEST_F(RegmillCorpus, VendorFilesWithDefaultOptions) { EXPECT_EQ(convertAll("svd", {}), 0); }

TEST_F(RegmillCorpus, VendorFilesWithVectorTableAndIgnoredNames) {
  EXPECT_EQ(convertAll("svd", kTableOptions), 0);
  EXPECT_TRUE(scratch_.exists("v.vec"));
}

TEST_F(RegmillCorpus, ProbingFilesWithBothOptionSets) {
  // A few probing files are deliberately no SVD; they must fail alike both times.
  int refused = convertAll("svd-edge", {});
  EXPECT_EQ(convertAll("svd-edge", kTableOptions), refused);
}

TEST_F(RegmillCorpus, HeadersGiveNamesAndCoreData) {
  fs::path device = fs::path(REGMILL_SOURCE_DIR) / "examples" / "widget.svd";
  for (const fs::path& header : filesUnder(kCorpus / "headers", ".h")) {
    ProcessResult result = runRegmill(
        {"-irqs2", header.string(), "-irq-table", "v", "-pp", device.string(), "out.xml"}, scratch_.path());
    EXPECT_EQ(result.exitCode, 0) << header << "\n" << result.err;
    expectReadableOutput(scratch_.file("out.xml"), false);
  }
}

}  // namespace
}  // namespace regmill
