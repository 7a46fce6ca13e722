// How SVD conversion scales with derivations: a generated device with N registers
// that each derive from a sibling and N fields that each derive from a field at the
// far end of the document, against the same with 4N. Converting (read the file,
// build the map, write it) must take at most 5 times as long for 4N as for N; work
// that searched the document for every base would take 16 times as long.
// After the runs it prints time(4N) / time(N) and exits 1 when it passes 5.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "memorymap/svd_file.h"
#include "readers/svd/svd_reader.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRegistersPerPeripheral = 16;
constexpr int64_t kSmall = 4000;

// Peripherals of 16 registers: the first has a field of its own, the others derive
// from it and add a field that derives from a field of the library peripheral,
// which stands last in the document so that a plain search would pass everything.
std::string generateDerivedSVD(int64_t registers) {
  std::string svd = "<device><name>BENCH</name><width>32</width><peripherals>\n";
  int64_t field = 0;
  for (int64_t p = 0; p * kRegistersPerPeripheral < registers; ++p) {
    svd += "<peripheral><name>P" + std::to_string(p) + "</name><baseAddress>0x" + std::to_string(40000000 + p * 1000) +
           "</baseAddress><registers>\n<register><name>BASE</name><addressOffset>0x0</addressOffset>"
           "<description>base register</description><resetValue>0x0</resetValue><fields><field><name>OWN</name>"
           "<bitOffset>0</bitOffset><bitWidth>1</bitWidth></field></fields></register>\n";
    for (int r = 1; r < kRegistersPerPeripheral; ++r, ++field) {
      std::string index = std::to_string(r);
      svd += "<register derivedFrom=\"BASE\"><name>R" + index + "</name><addressOffset>0x" + std::to_string(r * 4) +
             "</addressOffset><fields><field derivedFrom=\"LIB" + std::to_string(field) + "\"><name>F" + index +
             "</name></field></fields></register>\n";
    }
    svd += "</registers></peripheral>\n";
  }
  svd += "<peripheral><name>LIBRARY</name><baseAddress>0x50000000</baseAddress><registers>\n";
  for (int64_t f = 0; f < field; ++f) {
    if (f % kRegistersPerPeripheral == 0)
      svd += (f == 0 ? "" : "</fields></register>\n") + std::string("<register><name>L") + std::to_string(f) +
             "</name><addressOffset>0x0</addressOffset><fields>";
    svd += "<field><name>LIB" + std::to_string(f) + "</name><bitOffset>" + std::to_string(f % 32) +
           "</bitOffset><bitWidth>1</bitWidth><enumeratedValues><enumeratedValue><name>ON</name><value>1</value>"
           "</enumeratedValue></enumeratedValues></field>";
  }
  svd += "</fields></register>\n</registers></peripheral>\n</peripherals></device>\n";
  return svd;
}

fs::path writeInput(int64_t registers) {
  fs::path path = fs::temp_directory_path() / ("svd_scaling_" + std::to_string(registers) + ".svd");
  std::FILE* stream = std::fopen(path.c_str(), "wb");
  if (stream == nullptr) return {};
  std::string text = generateDerivedSVD(registers);
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fclose(stream);
  return path;
}

void convertDerived(benchmark::State& state) {
  fs::path input = writeInput(state.range(0));
  if (input.empty()) {
    state.SkipWithError("no temporary input file");
    return;
  }
  fs::path output = fs::temp_directory_path() / "svd_scaling_out.xml";
  // The converter ends without tearing its map down, so the maps stay until the
  // timing is over; their teardown would otherwise land in later iterations.
  std::vector<std::unique_ptr<regmill::SVDFile>> converted;
  for (auto _ : state) {
    auto& file = converted.emplace_back(std::make_unique<regmill::SVDFile>());
    if (!regmill::loadSVD(*file, QString::fromStdString(input.string()), 0, nullptr) ||
        !file->save(QString::fromStdString(output.string()), 2, 0))
      state.SkipWithError("conversion failed");
  }
  state.counters["input_MB"] = static_cast<double>(fs::file_size(input)) / 1e6;
  fs::remove(input);
  fs::remove(output);
}
BENCHMARK(convertDerived)->Arg(kSmall)->Arg(4 * kSmall)->Unit(benchmark::kMillisecond)->Iterations(12);

// Keeps the console output and remembers each run's real and CPU time per iteration.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      realTimes[run.run_name.args] = run.GetAdjustedRealTime();
      cpuTimes[run.run_name.args] = run.GetAdjustedCPUTime();
    }
  }
  std::map<std::string, double> realTimes;
  std::map<std::string, double> cpuTimes;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const std::string small = std::to_string(kSmall);
  const std::string large = std::to_string(4 * kSmall);
  if (reporter.cpuTimes.count(small) == 0 || reporter.cpuTimes.count(large) == 0) return 0;  // filtered out
  // The conversion runs on one thread, so its CPU time is its work; the real time
  // also holds whatever else the machine was doing.
  double cpuRatio = reporter.cpuTimes[large] / reporter.cpuTimes[small];
  double realRatio = reporter.realTimes[large] / reporter.realTimes[small];
  std::printf("time(4N) / time(N) = %.2f CPU, %.2f real (at most 5)\n", cpuRatio, realRatio);
  return cpuRatio <= 5.0 ? 0 : 1;
}
