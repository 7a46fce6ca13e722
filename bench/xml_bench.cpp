// Times our XML load and write against xmllint on the same files in the same run.
// Inputs: the largest .svd of the shared corpus, and a file of at least 40 MB made
// by repeating that file's peripherals inside one root; without a corpus, a
// generated file of the same size stands in for both. A last file holds one tag
// with 20000 attributes. Each figure is the best of 3.
//
//   xml_bench [corpus folder or .svd file]
//
// The peak memory of a parse is taken from a child process that does nothing else,
// for our parser (this program run with --load-only) and for xmllint alike.
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "bench_support.h"
#include "xml/xml_document.h"

namespace fs = std::filesystem;

using regmill::bench::largestSvd;
using regmill::bench::readFile;
using regmill::bench::runChild;

namespace {

constexpr size_t kLargeSize = 40u << 20;
constexpr int kRounds = 3;

using Clock = std::chrono::steady_clock;

double bestOf(const std::function<void()>& work) {
  double best = 1e300;
  for (int round = 0; round < kRounds; ++round) {
    auto start = Clock::now();
    work();
    best = std::min(best, std::chrono::duration<double, std::milli>(Clock::now() - start).count());
  }
  return best;
}

// A file of at least 40 MB: the text in front of the first peripheral, the
// peripherals repeated, and the text behind the last one.
void writeRepeated(const std::string& svd, const fs::path& target) {
  size_t first = svd.find("<peripheral");
  size_t closing = svd.rfind("</peripherals>");
  size_t last = svd.rfind("</peripheral>", closing);
  std::ofstream out(target, std::ios::binary);
  if (first == std::string::npos || last == std::string::npos || closing == std::string::npos || last < first) {
    // No peripherals: repeat the whole root's content instead.
    out << "<copies>\n";
    for (size_t written = 0; written < kLargeSize; written += svd.size()) out << svd.substr(svd.find("<device"));
    out << "</copies>\n";
    return;
  }
  // "<peripherals>" also starts with "<peripheral"; step behind that tag.
  if (svd.compare(first, 13, "<peripherals>") == 0) first = svd.find("<peripheral", first + 13);
  last += std::strlen("</peripheral>");
  const std::string block = svd.substr(first, last - first);
  out << svd.substr(0, first);
  for (size_t written = 0; written < kLargeSize; written += block.size() + 5) out << block << "\n    ";
  out << svd.substr(last);
}

// Without a corpus: peripherals made up in the shape of a vendor file.
void writeGenerated(const fs::path& target) {
  std::ofstream out(target, std::ios::binary);
  out << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<device schemaVersion=\"1.3\">\n  <name>GEN</name>\n"
         "  <peripherals>\n";
  size_t written = 0;
  for (int p = 0; written < kLargeSize; ++p) {
    std::ostringstream peripheral;
    peripheral << "    <peripheral>\n      <name>P" << p << "</name>\n      <baseAddress>0x" << std::hex
               << (0x40000000 + p * 0x400) << std::dec << "</baseAddress>\n      <registers>\n";
    for (int r = 0; r < 16; ++r) {
      peripheral << "        <register>\n          <name>R" << r << "</name>\n"
                 << "          <description>Register &amp; status " << r << " of P" << p << "</description>\n"
                 << "          <addressOffset>0x" << std::hex << r * 4 << std::dec << "</addressOffset>\n"
                 << "          <fields>\n";
      for (int f = 0; f < 4; ++f)
        peripheral << "            <field><name>F" << f << "</name><bitOffset>" << f * 8
                   << "</bitOffset><bitWidth>8</bitWidth><access>read-write</access></field>\n";
      peripheral << "          </fields>\n        </register>\n";
    }
    peripheral << "      </registers>\n    </peripheral>\n";
    out << peripheral.str();
    written += peripheral.str().size();
  }
  out << "  </peripherals>\n</device>\n";
}

// The white space between tags, as a parse with text nodes gives it, hides all
// other children from the writer (it prints only a first text child). Dropping it
// leaves the tree that a reader works with and that a document built in code has.
void dropLayoutText(regmill::XMLNode* root) {
  std::vector<regmill::XMLNode*> pending{root};
  while (!pending.empty()) {
    regmill::XMLNode* node = pending.back();
    pending.pop_back();
    bool hasElements = false;
    for (regmill::XMLNode* child = node->firstChild(); child != nullptr; child = child->nextSibling())
      hasElements = hasElements || child->isElement();
    for (regmill::XMLNode* child = node->firstChild(); child != nullptr;) {
      regmill::XMLNode* next = child->nextSibling();
      if (hasElements && child->nodeType() == regmill::XMLNodeType::Data &&
          child->getName()[std::strspn(child->getName(), " \t\r\n")] == '\0') {
        node->removeChild(child);
        delete child;
      } else if (child->isElement()) {
        pending.push_back(child);
      }
      child = next;
    }
  }
}

// One tag with many attributes: setting each of them must not search all the
// others, or the parse takes quadratic time.
void writeWideTag(const fs::path& target, int attributes) {
  std::ofstream out(target, std::ios::binary);
  out << "<wide";
  for (int i = 0; i < attributes; ++i) out << " a" << i << "=\"" << i << '"';
  out << "/>\n";
}

struct Peaks {
  long oursKilobytes = 0;
  long xmllintKilobytes = 0;
};

// A child's peak counts the pages it shared with this process before its exec, so
// the peaks are taken while this process is still small, before any timing run.
Peaks measurePeaks(const fs::path& file, const std::string& self) {
  Peaks peaks;
  runChild({self, "--load-only", file.string()}, peaks.oursKilobytes);
  runChild({"xmllint", "--noout", file.string()}, peaks.xmllintKilobytes);
  return peaks;
}

void measure(const fs::path& file, const Peaks& peaks) {
  const double megabytes = static_cast<double>(fs::file_size(file)) / (1 << 20);
  const std::string path = file.string();
  const fs::path output = fs::temp_directory_path() / "regmill-xml-bench-out.xml";

  double parseMs = bestOf([&] {
    regmill::XMLDocument document(true);
    if (!document.load(path.c_str())) std::fprintf(stderr, "load failed: %s\n", document.errorText());
  });
  double lintMs = bestOf([&] {
    long ignored = 0;
    if (runChild({"xmllint", "--noout", path}, ignored) != 0) std::fprintf(stderr, "xmllint failed on %s\n", path.c_str());
  });
  std::printf("xml parse %s %.1f MB ours %.1f ms xmllint %.1f ms ratio %.2f\n", path.c_str(), megabytes, parseMs,
              lintMs, parseMs / lintMs);

  regmill::XMLDocument document(true);
  document.load(path.c_str());
  if (document.root() != nullptr) dropLayoutText(document.root());
  double writeMs = bestOf([&] {
    std::FILE* stream = std::fopen(output.c_str(), "wb");
    if (stream == nullptr) return;
    document.write(stream, 2, 0);
    std::fclose(stream);
  });
  const double writtenMegabytes = static_cast<double>(fs::file_size(output)) / (1 << 20);
  // xmllint can't write without parsing, so the fair peer is our parse plus write.
  double lintWriteMs = bestOf([&] {
    long ignored = 0;
    runChild({"xmllint", "--output", output.string(), path}, ignored);
  });
  fs::remove(output);
  std::printf("xml write %s %.1f MB ours %.1f ms, parse+write %.1f ms xmllint parse+write %.1f ms ratio %.2f\n",
              path.c_str(), writtenMegabytes, writeMs, parseMs + writeMs, lintWriteMs,
              (parseMs + writeMs) / lintWriteMs);
  std::printf("xml peak memory %s ours %.1f MB xmllint %.1f MB (%.1f and %.1f times the file)\n", path.c_str(),
              peaks.oursKilobytes / 1024.0, peaks.xmllintKilobytes / 1024.0,
              peaks.oursKilobytes / 1024.0 / megabytes, peaks.xmllintKilobytes / 1024.0 / megabytes);
  std::fflush(stdout);
}

fs::path sharedCorpus(int argc, char** argv) {
  if (argc > 1) return argv[1];
  if (const char* shared = std::getenv("REGMILL_SHARED_DIR")) return fs::path(shared) / "corpus";
#ifdef REGMILL_SHARED_DIR
  return fs::path(REGMILL_SHARED_DIR) / "corpus";
#else
  return {};
#endif
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--load-only") == 0) {
    regmill::XMLDocument document(true);
    return document.load(argv[2]) ? 0 : 1;
  }
  const std::string self = fs::canonical("/proc/self/exe").string();
  const fs::path folder = fs::temp_directory_path() / ("regmill-xml-bench-" + std::to_string(getpid()));
  fs::create_directories(folder);

  fs::path real = largestSvd(sharedCorpus(argc, argv));
  const fs::path large = folder / "large.svd";
  if (real.empty()) {
    std::printf("no .svd found under %s; generating the input\n", sharedCorpus(argc, argv).c_str());
    writeGenerated(large);
  } else {
    writeRepeated(readFile(real), large);
  }
  const fs::path wide = folder / "wide.xml";
  writeWideTag(wide, 20000);

  std::vector<fs::path> files;
  if (!real.empty()) files.push_back(real);
  files.push_back(large);
  files.push_back(wide);
  long ownKilobytes = 0;
  runChild({"true"}, ownKilobytes);
  std::printf("(peaks below include %.1f MB that a child shares with this program before its exec)\n",
              ownKilobytes / 1024.0);
  std::vector<Peaks> peaks;
  for (const fs::path& file : files) peaks.push_back(measurePeaks(file, self));
  for (size_t i = 0; i < files.size(); ++i) measure(files[i], peaks[i]);
  fs::remove_all(folder);
  return 0;
}
