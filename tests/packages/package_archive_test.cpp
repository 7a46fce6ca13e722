// Package archives written and read back in every layout and compression, the
// entry states and look-ups, damaged input, and where extraction refuses to write.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <random>
#include <set>

#include "base/hexception.h"
#include "packages/package_archive.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

std::string failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const HException& failure) {
    return failure.text();
  }
  return "<no error>";
}

std::string text(const QByteArray& bytes) { return bytes.toStdString(); }

// A disk file with a chosen mode and modification time.
std::string diskFile(const ScratchFolder& folder, const std::string& name, const std::string& contents, mode_t mode,
                     time_t time) {
  std::string path = folder.write(name, contents);
  chmod(path.c_str(), mode);
  utimbuf times{time, time};
  utime(path.c_str(), &times);
  return path;
}

std::string compressible(size_t size) {
  std::string bytes;
  for (size_t i = 0; bytes.size() < size; ++i) bytes += "register " + std::to_string(i % 97) + " at 0x4000\n";
  bytes.resize(size);
  return bytes;
}

struct Layout {
  uint32_t version, algorithm;
  int level;
};

TEST(PackageArchive, EveryLayoutAndCompressionReadsBackNamesSizesModesTimesAndBytes) {
  ScratchFolder folder;
  std::string writable = diskFile(folder, "w.txt", compressible(70000), 0640, 1000000000);
  std::string readOnly = diskFile(folder, "r.txt", "fixed", 0444, 1200000000);
  for (Layout layout : {Layout{1, 0, -1}, {2, 0, 0}, {2, 0, 9}, {2, 1, 1}, {2, 1, 9}}) {
    SCOPED_TRACE(::testing::Message() << "version " << layout.version << " algorithm " << layout.algorithm);
    PackageArchive written;
    written.setVersion(layout.version);
    written.setAlgorithm(layout.algorithm);
    written.addFile(QString::fromStdString(writable), "src/w.txt");
    written.addFile(QString::fromStdString(readOnly), "r.txt");
    written.addFileContents("dir/\u00fcn\u00efcode_package.xml", "<package/>", 0100600,
                            QDateTime::fromSecsSinceEpoch(5));
    written.addFileContents("empty", QByteArray(), 0100644, QDateTime::fromSecsSinceEpoch(6));
    std::string path = folder.file("a.lkPackage");
    written.save(QString::fromStdString(path), layout.level);

    PackageArchive read(QString::fromStdString(path));
    EXPECT_TRUE(read.isPackageFile(QString::fromStdString(path)));
    EXPECT_EQ(read.version(), layout.version);
    EXPECT_EQ(read.algorithm(), layout.algorithm);
    std::string listing;
    for (const auto& file : read.files())
      listing += file->name.toStdString() + " " + std::to_string(file->size) + " " +
                 QString::number(file->mode, 8).toStdString() + " " +
                 std::to_string(file->time.toSecsSinceEpoch()) + "; ";
    // Layout 1 keeps only whether a file may be written; layout 2 the whole mode.
    EXPECT_EQ(listing, layout.version == 1
                           ? "src/w.txt 70000 666 1000000000; r.txt 5 444 1200000000; "
                             "dir/\u00fcn\u00efcode_package.xml 10 666 5; empty 0 666 6; "
                           : "src/w.txt 70000 100640 1000000000; r.txt 5 100444 1200000000; "
                             "dir/\u00fcn\u00efcode_package.xml 10 100600 5; empty 0 100644 6; ");
    // Backwards through the table: each step seeks back in the compressed stream.
    EXPECT_EQ(text(read.fileContents(read.files()[2].get())), "<package/>");
    EXPECT_EQ(text(read.fileContents(read.files()[1].get())), "fixed");
    EXPECT_EQ(text(read.fileContents(read.files()[0].get())), compressible(70000));
    EXPECT_EQ(read.fileContents(read.files()[3].get()).size(), 0);
    EXPECT_EQ(read.findPackageDescription(), read.files()[2].get());
  }
}

TEST(PackageArchive, AnEmptyArchiveOfEitherLayoutReadsBack) {
  ScratchFolder folder;
  for (uint32_t version : {1u, 2u}) {
    PackageArchive empty;
    empty.setVersion(version);
    empty.save(QString::fromStdString(folder.file("e")), 5);
    PackageArchive read(QString::fromStdString(folder.file("e")));
    EXPECT_EQ(read.version(), version);
    EXPECT_TRUE(read.files().empty());
    EXPECT_EQ(read.findPackageDescription(), nullptr);
  }
}

TEST(PackageArchive, LevelsAreClampedAndBzip2RefusesLevelZeroLeavingTheTargetAlone) {
  ScratchFolder folder;
  PackageArchive archive;
  archive.setVersion(2);
  archive.addFileContents("text", QByteArray::fromStdString(compressible(200000)), 0644, QDateTime());
  auto savedAt = [&](int level) {
    archive.save(QString::fromStdString(folder.file("l")), level);
    return folder.read("l");
  };
  EXPECT_EQ(savedAt(-1), savedAt(7));
  EXPECT_EQ(savedAt(42), savedAt(9));
  EXPECT_NE(savedAt(1), savedAt(9));
  archive.setAlgorithm(1);
  std::string before = savedAt(9);
  EXPECT_EQ(failureOf([&] { archive.save(QString::fromStdString(folder.file("l")), 0); }), "cannot initialise deflate");
  EXPECT_EQ(folder.read("l"), before);
  archive.setAlgorithm(7);
  EXPECT_EQ(failureOf([&] { archive.save(QString::fromStdString(folder.file("l")), 1); }),
            "unsupported compression algorithm");
  archive.setVersion(3);
  EXPECT_EQ(failureOf([&] { archive.save(QString::fromStdString(folder.file("l")), 1); }),
            "unsupported package file version");
  EXPECT_EQ(folder.entryCount(), 1u);
}

TEST(PackageArchive, AddFileUpdatesByNameAndFindFileSeesEveryAddedEntry) {
  ScratchFolder folder;
  std::string one = folder.write("one", "1"), two = folder.write("two", "22");
  PackageArchive archive;
  archive.addFile(QString::fromStdString(two), "b");
  archive.addFile(QString::fromStdString(one), "a");
  archive.addFile(QString::fromStdString(two), "a");
  ASSERT_EQ(archive.files().size(), 2u);
  EXPECT_EQ(archive.findFile("a")->size, 2u);
  EXPECT_EQ(archive.findFile("a")->state, PackageArchiveFile::OnDisk);
  EXPECT_EQ(archive.findFile("A"), nullptr);
  EXPECT_EQ(failureOf([&] { archive.addFile(QString::fromStdString(folder.file("none")), "x"); }),
            "cannot read " + folder.file("none"));
  archive.save(QString::fromStdString(folder.file("p")), 1);

  for (bool sorted : {false, true}) {
    PackageArchive read;
    read.open(QString::fromStdString(folder.file("p")), 0, sorted);
    EXPECT_EQ(read.findFile("a"), read.files()[1].get());
    read.addFile(QString::fromStdString(one), "0-first");
    read.addFile(QString::fromStdString(one), "zz-last");
    EXPECT_EQ(text(read.fileContents(read.findFile("0-first"))), "1");
    EXPECT_EQ(text(read.fileContents(read.findFile("zz-last"))), "1");
    EXPECT_EQ(text(read.fileContents(read.findFile("b"))), "22");
  }
}

TEST(PackageArchive, SavingOntoTheOpenArchiveKeepsItsEntries) {
  ScratchFolder folder;
  std::string path = folder.file("self");
  PackageArchive first;
  first.addFileContents("old", "old bytes", 0644, QDateTime::fromSecsSinceEpoch(1));
  first.save(QString::fromStdString(path), 6);
  PackageArchive archive(QString::fromStdString(path));
  archive.addFileContents("new", "new bytes", 0644, QDateTime::fromSecsSinceEpoch(2));
  archive.save(QString::fromStdString(path), 6);
  PackageArchive read(QString::fromStdString(path));
  ASSERT_EQ(read.files().size(), 2u);
  EXPECT_EQ(text(read.fileContents(read.findFile("old"))), "old bytes");
  EXPECT_EQ(text(read.fileContents(read.findFile("new"))), "new bytes");
  EXPECT_EQ(folder.entryCount(), 1u);
}

// The layout-1 plain stream, uncompressed, as a raw archive holds it.
std::string rawArchive(uint32_t count, const std::string& name, const std::string& contents) {
  auto little = [](uint32_t value) { return std::string{char(value), char(value >> 8), char(value >> 16), char(value >> 24)}; };
  std::string entry = name + std::string(1024 - name.size(), '\0') + little(8 + 1040) + little(uint32_t(contents.size())) +
                      little(1) + little(77);
  return little(PackageArchive::kStreamMagic1) + little(count) + entry + contents;
}

TEST(PackageArchive, ReadsTheRawFormAndReportsDamagedInputWithItsMessages) {
  ScratchFolder folder;
  PackageArchive archive(QString::fromStdString(folder.write("raw", rawArchive(1, "n", "body"))));
  ASSERT_EQ(archive.files().size(), 1u);
  EXPECT_EQ(archive.files()[0]->mode, 0444u);
  EXPECT_EQ(text(archive.fileContents(archive.files()[0].get())), "body");

  auto openFailure = [&](const std::string& bytes) {
    return failureOf([&] { archive.open(QString::fromStdString(folder.write("bad", bytes))); });
  };
  EXPECT_EQ(openFailure(rawArchive(2, "n", "body")), "bad table of contents");
  EXPECT_TRUE(archive.files().empty());  // a failed open forgets everything
  EXPECT_EQ(failureOf([&] { archive.open(QString::fromStdString(folder.file("absent"))); }),
            folder.file("absent") + " does not exist");
  std::mt19937 random(11);
  std::string noise(4096, '\0');
  for (char& c : noise) c = char(random());
  EXPECT_EQ(openFailure(noise), "unsupported package file format");
  EXPECT_FALSE(archive.isPackageFile(QString::fromStdString(folder.file("bad"))));
  EXPECT_EQ(openFailure(std::string("\xb1\xc6\xf5\x71\x02\x30\0\0 bytes", 14)), "unsupported compression algorithm");

  // Every cut of real archives fails with one of the archive's own texts, or, when
  // only the end of the compressed stream is gone, still gives every byte; nothing
  // crashes.
  const std::set<std::string> expected = {"<no error>", "unsupported package file format", "bad header", "bad table of contents",
                                          "error reading stream", "error reading from compressed stream",
                                          "cannot read file text from archive", "cannot read file tail from archive"};
  for (uint32_t algorithm : {0u, 1u}) {
    PackageArchive whole;
    whole.setVersion(2);
    whole.setAlgorithm(algorithm);
    whole.addFileContents("text", QByteArray::fromStdString(compressible(30000)), 0644, QDateTime());
    whole.addFileContents("tail", "end", 0644, QDateTime());
    whole.save(QString::fromStdString(folder.file("whole")), 9);
    std::string bytes = folder.read("whole");
    for (size_t cut = 0; cut < bytes.size(); cut += 1 + cut / 8) {
      std::string message = failureOf([&] {
        archive.open(QString::fromStdString(folder.write("cut", bytes.substr(0, cut))));
        for (const auto& file : archive.files()) archive.fileContents(file.get());
      });
      EXPECT_TRUE(expected.count(message)) << "cut at " << cut << ": " << message;
      if (cut + 16 < bytes.size()) {
        EXPECT_NE(message, "<no error>") << "cut at " << cut;
      }
    }
  }
}

TEST(PackageArchive, ExtractWritesModeAndTimeAndRefusesToLeaveTheTargetFolder) {
  ScratchFolder folder;
  std::filesystem::create_directories(folder.path() / "out" / "real");
  std::filesystem::create_directory_symlink(folder.path() / "out" / "real", folder.path() / "out" / "link");
  PackageArchive archive;
  archive.setVersion(2);
  for (const char* name : {"a/b/ok", "../evil", "/abs", "a/../../evil", "link/evil", "a/./fine"})
    archive.addFileContents(name, "data", 0100751, QDateTime::fromSecsSinceEpoch(1234567890));
  const QString target = QString::fromStdString(folder.file("out"));
  std::string refusals;
  for (const auto& file : archive.files()) refusals += failureOf([&] { archive.extract(file.get(), target, false); }) + "\n";
  EXPECT_EQ(refusals,
            "<no error>\n"
            "refusing to write outside the target folder: ../evil\n"
            "refusing to write outside the target folder: /abs\n"
            "refusing to write outside the target folder: a/../../evil\n"
            "refusing to write through the symbolic link " + folder.file("out") + "/link\n"
            "<no error>\n");
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "evil"));
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "out" / "real" / "evil"));
  struct stat info;
  ASSERT_EQ(stat(folder.file("out/a/b/ok").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0751u);
  EXPECT_EQ(info.st_mtime, 1234567890);

  PackageArchiveFile* ok = archive.files()[0].get();
  EXPECT_EQ(failureOf([&] { archive.extract(ok, target, false); }), "cannot overwrite file " + folder.file("out") + "/a/b/ok");
  ok->bytes = "new data";
  ok->size = 8;
  archive.extract(ok, target, true);
  EXPECT_EQ(folder.read("out/a/b/ok"), "new data");
}

}  // namespace
}  // namespace regmill
