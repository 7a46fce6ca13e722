// Whole conversions against a peer on the same input, in the same run: regmill on
// the largest vendor SVD file and on a generated file of at least 40 MB, beside
// `xmllint --noout` on the same files; and regmill with -pp (core groups and the
// address computation over the whole tree) beside the plain conversion.
// Prints best-of-N wall times, the ratios and the peak memory of each process.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench_support.h"

namespace fs = std::filesystem;

using regmill::bench::largestSvd;
using regmill::bench::readFile;

namespace {

struct Timing {
  double milliseconds = 1e300;
  long peakKilobytes = 0;
};

// Runs the command `repeats` times; the best time and the largest peak resident size.
Timing timeCommand(const std::vector<std::string>& command, int repeats) {
  Timing best;
  for (int i = 0; i < repeats; ++i) {
    long peakKilobytes = 0;
    auto start = std::chrono::steady_clock::now();
    int status = regmill::bench::runChild(command, peakKilobytes);
    double elapsed = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    if (status != 0) {
      std::fprintf(stderr, "command failed: %s\n", command[0].c_str());
      std::exit(1);
    }
    best.milliseconds = std::min(best.milliseconds, elapsed);
    best.peakKilobytes = std::max(best.peakKilobytes, peakKilobytes);
  }
  return best;
}

// Repeats the peripherals of `svd` under new names and base addresses until the
// text reaches `targetBytes`. The copies derive nothing, so they convert in full.
std::string enlarge(const std::string& svd, size_t targetBytes) {
  size_t open = svd.find("<peripherals>");
  size_t close = svd.rfind("</peripherals>");
  if (open == std::string::npos || close == std::string::npos) return svd;
  open += std::string("<peripherals>").size();
  std::string body = svd.substr(open, close - open);
  std::string result = svd.substr(0, close);
  for (int copy = 1; result.size() < targetBytes; ++copy) {
    std::string renamed;
    renamed.reserve(body.size());
    size_t at = 0;
    // Each copy gets its own peripheral names and derivation targets, and a base
    // address moved by a copy number of megabytes.
    for (size_t found; (found = body.find("<name>", at)) != std::string::npos; at = found) {
      renamed.append(body, at, found - at);
      found += 6;
      renamed += "<name>";
      size_t end = body.find('<', found);
      bool peripheralName = body.rfind("<peripheral", found) != std::string::npos &&
                            body.rfind("<peripheral", found) > body.rfind("<register", found);
      renamed.append(body, found, end - found);
      if (peripheralName) renamed += "_C" + std::to_string(copy);
      found = end;
    }
    renamed.append(body, at, std::string::npos);
    result += renamed;
  }
  result += svd.substr(close);
  return result;
}

void compare(const char* label, const fs::path& input, const std::string& regmill, int repeats) {
  fs::path output = fs::temp_directory_path() / "regmill-bench-out.xml";
  double megabytes = static_cast<double>(fs::file_size(input)) / 1e6;
  Timing peer = timeCommand({"xmllint", "--noout", input.string()}, repeats);
  Timing plain = timeCommand({regmill, input.string(), output.string()}, repeats);
  Timing withCore = timeCommand({regmill, "-pp", input.string(), output.string()}, repeats);
  std::printf("%s %s (%.1f MB)\n", label, input.filename().c_str(), megabytes);
  std::printf("  xmllint --noout   %9.1f ms  peak %7ld KB\n", peer.milliseconds, peer.peakKilobytes);
  std::printf("  regmill           %9.1f ms  peak %7ld KB  ratio to xmllint %.2f\n", plain.milliseconds,
              plain.peakKilobytes, plain.milliseconds / peer.milliseconds);
  std::printf("  regmill -pp       %9.1f ms  peak %7ld KB  ratio to plain conversion %.2f\n",
              withCore.milliseconds, withCore.peakKilobytes, withCore.milliseconds / plain.milliseconds);
  fs::remove(output);
}

}  // namespace

// Usage: conversion_bench [corpus-folder] [--keep-generated PATH]
int main(int argc, char** argv) {
  fs::path corpus = argc > 1 && argv[1][0] != '-' ? fs::path(argv[1]) : fs::path(REGMILL_SHARED_DIR) / "corpus";
  fs::path keep;
  for (int i = 1; i + 1 < argc; ++i)
    if (std::string(argv[i]) == "--keep-generated") keep = argv[i + 1];
  std::string regmill = REGMILL_BINARY;
  fs::path largest = largestSvd(corpus);
  std::string seed = largest.empty() ? readFile(fs::path(REGMILL_SOURCE_DIR) / "examples" / "widget.svd")
                                     : readFile(largest);
  if (largest.empty())
    std::printf("no corpus at %s: only the generated file is measured\n", corpus.c_str());
  else
    compare("largest corpus file", largest, regmill, 15);

  fs::path generated = fs::temp_directory_path() / "regmill-bench-large.svd";
  std::ofstream(generated, std::ios::binary) << enlarge(seed, 40u << 20);
  compare("generated", generated, regmill, 5);
  if (keep.empty())
    fs::remove(generated);
  else
    fs::rename(generated, keep);
  return 0;
}
