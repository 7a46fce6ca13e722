// Archives checked against tools that share none of our code: Python's zlib module
// and the bzip2 program read our compressed payloads once the plain header is cut
// off, and archives made by a small Python writer from the layout read back here.
#include <gtest/gtest.h>

#include <QStandardPaths>

#include "packages/package_archive.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::runProgram;
using testing::ScratchFolder;

std::string peer(const char* name) { return QStandardPaths::findExecutable(name).toStdString(); }

#define SKIP_WITHOUT(program) \
  if ((program).empty()) GTEST_SKIP() << "no " #program " on this machine; tools/install-deps.sh lists it"

void writeSample(const ScratchFolder& folder, uint32_t version, uint32_t algorithm) {
  PackageArchive archive;
  archive.setVersion(version);
  archive.setAlgorithm(algorithm);
  archive.addFileContents("a.txt", "alpha", 0100644, QDateTime::fromSecsSinceEpoch(1));
  archive.addFileContents("folder/b.bin", QByteArray(5000, 'b'), 0100600, QDateTime::fromSecsSinceEpoch(2));
  archive.save(QString::fromStdString(folder.file("ours")), 9);
}

TEST(PackageArchivePeers, PythonZlibReadsOurZlibPayloadsOfBothLayouts) {
  std::string python = peer("python3");
  SKIP_WITHOUT(python);
  ScratchFolder folder;
  // Plain stream: stream header, table, then 5 + 5000 bytes of contents.
  struct Case {
    uint32_t version;
    int header;
    std::string expected;
  };
  for (const Case& c : {Case{1, 12, "7093 c8c35241"}, Case{2, 8, "5078 02000000"}}) {
    writeSample(folder, c.version, 0);
    auto run = runProgram(python,
                          {"-c",
                           "import sys, zlib; d = zlib.decompress(open('ours', 'rb').read()[" +
                               std::to_string(c.header) + ":]); print(len(d), d[:4].hex())"},
                          folder.path());
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, c.expected + "\n");
  }
}

TEST(PackageArchivePeers, Bzip2TestsOurBzip2PayloadAsIntact) {
  std::string bzip2 = peer("bzip2");
  SKIP_WITHOUT(bzip2);
  ScratchFolder folder;
  writeSample(folder, 2, 1);
  folder.write("payload.bz2", folder.read("ours").substr(8));
  auto run = runProgram(bzip2, {"-t", "payload.bz2"}, folder.path());
  EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST(PackageArchivePeers, ArchivesOfAnIndependentWriterReadBack) {
  std::string python = peer("python3");
  SKIP_WITHOUT(python);
  ScratchFolder folder;
  std::string block;
  for (int i = 0; i < 256; ++i) block += char(i);
  std::string expectedData;
  for (int i = 0; i < 40; ++i) expectedData += block;
  for (auto [version, algorithm] : {std::pair{"1", "zlib"}, {"2", "zlib"}, {"2", "bzip2"}}) {
    SCOPED_TRACE(std::string(version) + " " + algorithm);
    auto run = runProgram(python, {PACKAGES_TEST_DIR "/write_archive.py", "theirs", version, algorithm}, folder.path());
    ASSERT_EQ(run.exitCode, 0) << run.err;
    PackageArchive archive;
    archive.open(QString::fromStdString(folder.file("theirs")), 0, true);
    std::string listing;
    for (const auto& file : archive.files())
      listing += file->name.toStdString() + " " + std::to_string(file->size) + " " +
                 QString::number(file->mode, 8).toStdString() + " " +
                 std::to_string(file->time.toSecsSinceEpoch()) + "; ";
    EXPECT_EQ(listing, std::string(version) == "1"
                           ? "hello.txt 6 444 1000000000; dir/data.bin 10240 666 1500000000; empty 0 666 0; "
                           : "hello.txt 6 100444 1000000000; dir/data.bin 10240 100755 1500000000; empty 0 100644 0; ");
    EXPECT_EQ(archive.fileContents(archive.findFile("dir/data.bin")).toStdString(), expectedData);
    EXPECT_EQ(archive.fileContents(archive.findFile("hello.txt")).toStdString(), "hello\n");
  }
}

}  // namespace
}  // namespace regmill
