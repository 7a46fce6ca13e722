#include "base/status.h"

namespace regmill {

namespace {
const std::string kNothing;
}

Status Status::failure(std::string reason, std::string file, uint32_t line) {
  return Status(std::make_shared<const Failure>(Failure{std::move(reason), std::move(file), line}));
}

const std::string& Status::reason() const { return ok() ? kNothing : failure_->reason; }
const std::string& Status::file() const { return ok() ? kNothing : failure_->file; }
uint32_t Status::line() const { return ok() ? 0 : failure_->line; }

std::string Status::message() const {
  if (ok()) return {};
  std::string text;
  if (!failure_->file.empty()) text = failure_->file;
  if (failure_->line != 0) text += (text.empty() ? "line " : " : line ") + std::to_string(failure_->line);
  if (!text.empty()) text += ": ";
  return text + failure_->reason;
}

Status Status::inFile(const std::string& file) const {
  if (ok() || !failure_->file.empty()) return *this;
  return failure(failure_->reason, file, failure_->line);
}

}  // namespace regmill
