// Feeds arbitrary bytes to the package archive reader as a file: the header test,
// the table of contents, and every entry's contents read forwards and then the first
// again, which seeks back through the compressed stream. A failure must be an
// HException; any crash, leak, hang or undefined behaviour is a finding.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/hexception.h"
#include "packages/package_archive.h"

namespace {

// Contents beyond this are not read: a table may promise sizes the fuzzer's bytes
// inflate to only slowly, and the reader's cost is linear in them anyway.
constexpr uint64_t kContentBudget = 8u << 20;

const std::string& scratchPath() {
  static const std::string path = "/tmp/package_archive_fuzz." + std::to_string(getpid());
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::FILE* file = std::fopen(scratchPath().c_str(), "wb");
  if (file == nullptr || std::fwrite(data, 1, size, file) != size || std::fclose(file) != 0) std::abort();
  const QString path = QString::fromStdString(scratchPath());
  regmill::PackageArchive archive;
  bool looksLikeArchive = archive.isPackageFile(path);
  try {
    archive.open(path, 0, size % 2 == 0);
    if (!looksLikeArchive) std::abort();  // open accepts only what the header test accepts
    uint64_t budget = kContentBudget;
    for (const auto& entry : archive.files()) {
      if (entry->size > budget) break;
      budget -= entry->size;
      archive.fileContents(entry.get());
      archive.findFile(entry->name);
    }
    if (!archive.files().empty() && archive.files().front()->size <= kContentBudget)
      archive.fileContents(archive.files().front().get());
  } catch (const regmill::HException&) {
  }
  unlink(scratchPath().c_str());  // no file stays behind the run
  return 0;
}
