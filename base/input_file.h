// Reading an input file whole, with a size bound. No device description or header
// comes near the bound; an endless device (/dev/zero, a pipe that never closes)
// reaches it and fails with a clear reason instead of filling memory.
#pragma once
#include <cstddef>
#include <cstdio>
#include <string>

#include "base/status.h"

namespace regmill {

// 256 MiB: the largest vendor descriptions are a few tens of megabytes.
constexpr size_t kInputSizeLimit = size_t{256} << 20;

// The bytes of the file, unchanged. A folder, a file that cannot be opened or read,
// and one longer than `limit` are failures naming the path.
Expected<std::string> readInputFile(const std::string& path, size_t limit = kInputSizeLimit);
// The same for an open stream, from where it stands to its end; `name` goes into a failure.
Expected<std::string> readInputStream(std::FILE* stream, const std::string& name, size_t limit = kInputSizeLimit);

// Whether two paths name the same file: the same file system object when both
// exist, else the same absolute path once "." and ".." and links of the folder are
// resolved.
bool namesSameFile(const std::string& first, const std::string& second);

}  // namespace regmill
