// Load files at scale, beside srec_cat and objcopy in the same run: a 16 MiB random
// image at 0x08000000 written and read in Intel HEX, S-records and TI text. In
// process, the writer and the reader alone; as programs, `loom hex` against the
// peers on the same files, with wall times, ratios and peak resident sizes.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"
#include "loadfile/binary_load_file.h"
#include "loadfile/load_file_formats.h"

namespace fs = std::filesystem;

namespace {

constexpr uint32_t kImageAddress = 0x08000000;
constexpr size_t kImageSize = size_t{16} << 20;

struct Run {
  double milliseconds = 1e300;
  long peakKilobytes = 0;
};

template <typename Work>
double bestMilliseconds(int repeats, Work work) {
  double best = 1e300;
  for (int i = 0; i < repeats; ++i) {
    auto start = std::chrono::steady_clock::now();
    work();
    best = std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  return best;
}

// The best time and largest peak of a program run `repeats` times; absent peers give none.
Run runProgram(const std::vector<std::string>& command, int repeats) {
  Run run;
  for (int i = 0; i < repeats; ++i) {
    long peak = 0;
    auto start = std::chrono::steady_clock::now();
    if (regmill::bench::runChild(command, peak) != 0) return Run{-1, 0};
    double elapsed = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    run.milliseconds = std::min(run.milliseconds, elapsed);
    run.peakKilobytes = std::max(run.peakKilobytes, peak);
  }
  return run;
}

void report(const char* label, const Run& run, const Run& ours) {
  if (run.milliseconds < 0) {
    std::printf("    %-34s not available\n", label);
    return;
  }
  std::printf("    %-34s %8.1f ms  peak %7ld KB (%.2f x image)  time ratio to loom %.2f\n", label, run.milliseconds,
              run.peakKilobytes, run.peakKilobytes * 1024.0 / kImageSize, run.milliseconds / ours.milliseconds);
}

struct Format {
  regmill::LoadFileFormat format;
  const char* extension;
  const char* srecCat;
  const char* objcopy;  // empty when objcopy has no such format
};

// Writes the random image in pieces, so that this process stays small: a child
// starts with the resident size of the process that forked it.
std::string writeRandomImage(const fs::path& folder) {
  std::string path = (folder / "image.bin").string();
  std::FILE* file = std::fopen(path.c_str(), "wb");
  std::mt19937 generator(2026);
  std::vector<char> piece(1 << 16);
  for (size_t written = 0; written < kImageSize; written += piece.size()) {
    for (char& byte : piece) byte = static_cast<char>(generator());
    std::fwrite(piece.data(), 1, piece.size(), file);
  }
  std::fclose(file);
  return path;
}

}  // namespace

int main() {
  const std::string loom = LOOM_BINARY;
  fs::path folder = fs::temp_directory_path() / "regmill-loadfile-bench";
  fs::create_directories(folder);
  const std::string binary = writeRandomImage(folder);
  const std::string address = "0x08000000";
  const std::string back = (folder / "back.bin").string();
  const int repeats = 3;

  const Format formats[] = {
      {regmill::LoadFileFormat::IntelHex, "hex", "-intel", "ihex"},
      {regmill::LoadFileFormat::SRecord, "srec", "-motorola", "srec"},
      {regmill::LoadFileFormat::TIHex, "txt", "-ti-txt", ""},
  };
  std::printf("16 MiB random image at 0x%08X, best of %d; peers' warnings on stderr are theirs\n", kImageAddress,
              repeats);
  // The programs first, while this process is small; the work in process after them.
  for (const Format& format : formats) {
    std::string text = (folder / (std::string("image.") + format.extension)).string();
    std::printf("%s\n  writing from the binary image:\n", format.extension);
    Run ours = runProgram({loom, "hex", "convert", binary, text, "--address", address}, repeats);
    report("loom hex convert", ours, ours);
    report("srec_cat",
           runProgram({"srec_cat", binary, "-binary", "-offset", address, "-o", text + ".peer", format.srecCat}, repeats),
           ours);
    if (*format.objcopy)
      report("objcopy",
             runProgram({"objcopy", "-I", "binary", "-O", format.objcopy, "--change-addresses", address, binary,
                         text + ".peer"},
                        repeats),
             ours);

    std::printf("  reading into a binary image (%.1f MB of text):\n", fs::file_size(text) / 1e6);
    Run info = runProgram({loom, "hex", "info", text}, repeats);
    ours = runProgram({loom, "hex", "convert", text, back}, repeats);
    report("loom hex info (read only)", info, ours);
    report("loom hex convert", ours, ours);
    report("srec_cat",
           runProgram({"srec_cat", text, format.srecCat, "-offset", "-" + address, "-o", back, "-binary"}, repeats),
           ours);
    if (*format.objcopy)
      report("objcopy", runProgram({"objcopy", "-I", format.objcopy, "-O", "binary", text, back}, repeats), ours);
    fs::remove(text + ".peer");
  }
  std::printf("in process, the library alone:\n");
  regmill::BinaryLoadFile source(binary);
  source.setLoadAddress(kImageAddress);
  for (const Format& format : formats) {
    std::string text = (folder / (std::string("image.") + format.extension)).string();
    double write = bestMilliseconds(repeats, [&] { regmill::saveLoadFile(source, format.format, text); });
    double read = bestMilliseconds(repeats, [&] { regmill::loadLoadFile(format.format, text)->sections(); });
    std::printf("  %-4s write %7.1f ms  read %7.1f ms\n", format.extension, write, read);
  }
  fs::remove_all(folder);
  return 0;
}
