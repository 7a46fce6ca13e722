// Writing a file so that nothing is lost: the bytes go to a temporary file in the
// target's folder, every write and the close are checked, and only a complete file
// is renamed over the target. On any failure, and when the process is killed while
// writing, the target keeps its old bytes and no temporary file stays behind.
#pragma once
#include <cstdio>
#include <functional>
#include <string>

#include "base/status.h"

namespace regmill {

class AtomicFileWriter {
 public:
  explicit AtomicFileWriter(std::string target);
  // Discards whatever was written unless commit succeeded.
  ~AtomicFileWriter();
  AtomicFileWriter(const AtomicFileWriter&) = delete;
  AtomicFileWriter& operator=(const AtomicFileWriter&) = delete;

  // Makes the temporary file. A target that exists and is no regular file (a device,
  // a pipe) cannot be replaced; it is then opened and written directly.
  Status open();
  // The stream to write to, in binary mode; valid between open and commit.
  std::FILE* stream() const { return stream_; }
  // Checks every write, closes, and puts the file in the target's place.
  Status commit();
  // Drops the temporary file; the target stays as it was.
  void discard();

 private:
  Status fail(const char* what);

  std::string target_;
  std::string temporaryName_;  // a named temporary file, when one is in the folder
  std::FILE* stream_ = nullptr;
  bool anonymous_ = false;     // the temporary file has no name until commit
  bool direct_ = false;        // writing straight into a device or pipe
  unsigned keptMode_ = 0;      // an existing target's permission bits, kept on the new file
  bool hasKeptMode_ = false;
};

// Opens `target` atomically, lets `write` fill the stream and commits.
Status writeFileAtomically(const std::string& target, const std::function<void(std::FILE*)>& write);

}  // namespace regmill
