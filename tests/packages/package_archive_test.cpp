// Package archives written and read back in every layout and compression, the entry
// states and look-ups, damaged input, where extraction refuses to write, and against
// code that shares none of ours: Python's zlib and bz2 modules read our payloads once
// the plain header is cut off, and write_archive.py, a writer made from the layout
// alone, makes archives that we read.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <QStandardPaths>
#include <random>
#include <set>

#include "base/hexception.h"
#include "packages/package_archive.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

std::string failureOf(const std::function<void()>& action) try {
  action();
  return "<no error>";
} catch (const HException& failure) {
  return failure.text();
}

QString q(const std::string& text) { return QString::fromStdString(text); }

std::string contents(PackageArchive& archive, const char* name) {
  return archive.fileContents(archive.findFile(name)).toStdString();
}

// "name size mode time; " for each entry, the mode in octal.
std::string listing(const PackageArchive& archive) {
  std::string text;
  for (const auto& file : archive.files())
    text += file->name.toStdString() + " " + std::to_string(file->size) + " " + QString::number(file->mode, 8).toStdString() +
            " " + std::to_string(file->time.toSecsSinceEpoch()) + "; ";
  return text;
}

std::string compressible(size_t size) {
  std::string bytes;
  for (size_t i = 0; bytes.size() < size; ++i) bytes += "register " + std::to_string(i % 97) + " at 0x4000\n";
  bytes.resize(size);
  return bytes;
}

TEST(PackageArchive, EveryLayoutAndCompressionReadsBackNamesSizesModesTimesAndBytes) {
  ScratchFolder folder;
  std::string writable = folder.write("w.txt", compressible(70000)), readOnly = folder.write("r.txt", "fixed");
  for (auto [path, mode, time] : {std::tuple{writable, 0640, 1000000000}, {readOnly, 0444, 1200000000}}) {
    chmod(path.c_str(), mode);
    utimbuf times{time, time};
    utime(path.c_str(), &times);
  }
  std::string path = folder.file("a.lkPackage");
  for (auto [version, algorithm, level] : {std::tuple{1u, 0u, -1}, {2u, 0u, 0}, {2u, 0u, 9}, {2u, 1u, 1}, {2u, 1u, 9}}) {
    SCOPED_TRACE(::testing::Message() << "version " << version << " algorithm " << algorithm);
    PackageArchive written;
    written.setVersion(version);
    written.setAlgorithm(algorithm);
    written.addFile(q(writable), "src/w.txt");
    written.addFile(q(readOnly), "r.txt");
    written.addFileContents("dir/\u00fcn\u00efcode_package.xml", "<package/>", 0100600, QDateTime::fromSecsSinceEpoch(5));
    written.addFileContents("empty", QByteArray(), 0100644, QDateTime::fromSecsSinceEpoch(6));
    written.save(q(path), level);

    PackageArchive read(q(path));
    EXPECT_TRUE(read.isPackageFile(q(path)));
    EXPECT_EQ(read.version(), version);
    EXPECT_EQ(read.algorithm(), algorithm);
    // Layout 1 keeps only whether a file may be written; layout 2 the whole mode.
    EXPECT_EQ(listing(read), version == 1 ? "src/w.txt 70000 666 1000000000; r.txt 5 444 1200000000; "
                                            "dir/\u00fcn\u00efcode_package.xml 10 666 5; empty 0 666 6; "
                                          : "src/w.txt 70000 100640 1000000000; r.txt 5 100444 1200000000; "
                                            "dir/\u00fcn\u00efcode_package.xml 10 100600 5; empty 0 100644 6; ");
    // Backwards through the table: each step seeks back in the compressed stream.
    EXPECT_EQ(contents(read, "dir/\u00fcn\u00efcode_package.xml"), "<package/>");
    EXPECT_EQ(contents(read, "r.txt"), "fixed");
    EXPECT_EQ(contents(read, "src/w.txt"), compressible(70000));
    EXPECT_EQ(contents(read, "empty"), "");
    EXPECT_EQ(read.findPackageDescription(), read.files()[2].get());

    PackageArchive empty;
    empty.setVersion(version);
    empty.setAlgorithm(algorithm);
    empty.save(q(path), level);
    read.open(q(path));
    EXPECT_EQ(listing(read) + std::to_string(read.version()), std::to_string(version));
  }
}

TEST(PackageArchive, LevelsAreClampedAndBadSettingsFailLeavingTheTargetAlone) {
  ScratchFolder folder;
  PackageArchive archive;
  archive.setVersion(2);
  archive.addFileContents("text", QByteArray::fromStdString(compressible(200000)), 0644, QDateTime());
  auto savedAt = [&](int level) {
    std::string failure = failureOf([&] { archive.save(q(folder.file("l")), level); });
    return failure == "<no error>" ? folder.read("l") : failure;
  };
  EXPECT_EQ(savedAt(-1), savedAt(7));
  EXPECT_EQ(savedAt(42), savedAt(9));
  EXPECT_NE(savedAt(1), savedAt(9));
  archive.setAlgorithm(1);
  std::string before = savedAt(9);
  EXPECT_EQ(savedAt(0), "cannot initialise deflate");
  archive.setAlgorithm(7);
  EXPECT_EQ(savedAt(1), "unsupported compression algorithm");
  archive.setVersion(3);
  EXPECT_EQ(savedAt(1), "unsupported package file version");
  EXPECT_EQ(folder.read("l"), before);
  EXPECT_EQ(folder.entryCount(), 1u);
}

TEST(PackageArchive, AddFileUpdatesByNameFindFileSeesEveryEntryAndSavingOntoTheOpenArchiveKeepsThem) {
  ScratchFolder folder;
  std::string one = folder.write("one", "1"), two = folder.write("two", "22"), path = folder.file("p");
  PackageArchive archive;
  archive.addFile(q(two), "b");
  archive.addFile(q(one), "a");
  archive.addFile(q(two), "a");
  ASSERT_EQ(archive.files().size(), 2u);
  EXPECT_EQ(archive.findFile("a")->size, 2u);
  EXPECT_EQ(archive.findFile("a")->state, PackageArchiveFile::OnDisk);
  EXPECT_EQ(archive.findFile("A"), nullptr);
  EXPECT_EQ(archive.findPackageDescription(), nullptr);
  EXPECT_EQ(failureOf([&] { archive.addFile(q(folder.file("none")), "x"); }), "cannot read " + folder.file("none"));
  archive.save(q(path), 1);

  for (bool sorted : {false, true}) {
    PackageArchive read;
    read.open(q(path), 0, sorted);
    EXPECT_EQ(read.findFile("a"), read.files()[1].get());
    read.addFile(q(one), "0-first");
    read.addFile(q(one), "zz-last");
    EXPECT_EQ(contents(read, "0-first") + contents(read, "zz-last") + contents(read, "b"), "1122");
    if (sorted) read.save(q(path), 6);
  }
  PackageArchive read(q(path));
  EXPECT_EQ(listing(read).substr(0, 4), "b 2 ");
  EXPECT_EQ(contents(read, "b") + contents(read, "a") + contents(read, "0-first") + contents(read, "zz-last"), "222211");
  EXPECT_EQ(folder.entryCount(), 3u);
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
  PackageArchive archive(q(folder.write("raw", rawArchive(1, "n", "body"))));
  EXPECT_EQ(listing(archive), "n 4 444 77; ");
  EXPECT_EQ(contents(archive, "n"), "body");

  auto openFailure = [&](const std::string& bytes) { return failureOf([&] { archive.open(q(folder.write("bad", bytes))); }); };
  EXPECT_EQ(openFailure(rawArchive(2, "n", "body")), "bad table of contents");
  EXPECT_TRUE(archive.files().empty());  // a failed open forgets everything
  EXPECT_EQ(failureOf([&] { archive.open(q(folder.file("absent"))); }), folder.file("absent") + " does not exist");
  std::mt19937 random(11);
  std::string noise(4096, '\0');
  for (char& c : noise) c = char(random());
  EXPECT_EQ(openFailure(noise), "unsupported package file format");
  EXPECT_FALSE(archive.isPackageFile(q(folder.file("bad"))));
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
    whole.save(q(folder.file("whole")), 9);
    std::string bytes = folder.read("whole");
    for (size_t cut = 0; cut < bytes.size(); cut += 1 + cut / 8) {
      std::string message = failureOf([&] {
        archive.open(q(folder.write("cut", bytes.substr(0, cut))));
        for (const auto& file : archive.files()) archive.fileContents(file.get());
      });
      EXPECT_TRUE(expected.count(message)) << "cut at " << cut << ": " << message;
      EXPECT_TRUE(cut + 16 >= bytes.size() || message != "<no error>") << "cut at " << cut;
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
  const QString target = q(folder.file("out"));
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

TEST(PackageArchivePeers, PythonReadsOurPayloadsAndWeReadWhatAnIndependentWriterMakes) {
  std::string python = QStandardPaths::findExecutable("python3").toStdString();
  if (python.empty()) GTEST_SKIP() << "no python3 on this machine; tools/install-deps.sh lists it";
  ScratchFolder folder;
  std::string data;
  for (int i = 0; i < 10240; ++i) data += char(i);
  // The plain stream: its header, the table, then 5 + 5000 bytes of contents.
  for (auto [version, module, header, plain] : {std::tuple{1u, "zlib", 12, "7093 c8c35241"}, {2u, "zlib", 8, "5078 02000000"},
                                                {2u, "bz2", 8, "5078 02000000"}}) {
    SCOPED_TRACE(std::to_string(version) + " " + module);
    PackageArchive ours;
    ours.setVersion(version);
    ours.setAlgorithm(module == std::string("bz2"));
    ours.addFileContents("a.txt", "alpha", 0100644, QDateTime::fromSecsSinceEpoch(1));
    ours.addFileContents("folder/b.bin", QByteArray(5000, 'b'), 0100600, QDateTime::fromSecsSinceEpoch(2));
    ours.save(q(folder.file("ours")), 9);
    std::string script = "import zlib, bz2; d = " + std::string(module) + ".decompress(open('ours', 'rb').read()[" +
                         std::to_string(header) + ":]); print(len(d), d[:4].hex())";
    auto run = testing::runProgram(python, {"-c", script}, folder.path());
    EXPECT_EQ(run.out, plain + std::string("\n")) << run.err;

    run = testing::runProgram(python, {PACKAGES_TEST_DIR "/write_archive.py", "theirs", std::to_string(version), module},
                              folder.path());
    ASSERT_EQ(run.exitCode, 0) << run.err;
    PackageArchive theirs;
    theirs.open(q(folder.file("theirs")), 0, true);
    EXPECT_EQ(listing(theirs), version == 1
                                   ? "hello.txt 6 444 1000000000; dir/data.bin 10240 666 1500000000; empty 0 666 0; "
                                   : "hello.txt 6 100444 1000000000; dir/data.bin 10240 100755 1500000000; empty 0 100644 0; ");
    EXPECT_EQ(contents(theirs, "dir/data.bin"), data);
    EXPECT_EQ(contents(theirs, "hello.txt"), "hello\n");
  }
}

}  // namespace
}  // namespace regmill
