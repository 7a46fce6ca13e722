// The library's one way for a failure to travel: a Status says that something
// failed, where (file and line, when known) and why; an Expected<T> is a value or
// such a failure. Functions that can fail return one of them, and [[nodiscard]]
// keeps a caller from dropping it. The program's entry point alone turns a failure
// into the user's line on stderr and the exit code.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace regmill {

class [[nodiscard]] Status {
 public:
  Status() = default;  // success

  // `line` counts from 1; 0 means no line is known.
  static Status failure(std::string reason, std::string file = {}, uint32_t line = 0);

  bool ok() const { return failure_ == nullptr; }
  explicit operator bool() const { return ok(); }

  // Empty texts and line 0 on success.
  const std::string& reason() const;
  const std::string& file() const;
  uint32_t line() const;

  // "file : line N: reason", leaving out what is not known; empty on success.
  std::string message() const;

  // The same failure with `file` filled in when it had none; success stays success.
  Status inFile(const std::string& file) const;

  // Marks a failure as looked at and deliberately set aside.
  void ignore() const {}

 private:
  struct Failure {
    std::string reason;
    std::string file;
    uint32_t line;
  };
  explicit Status(std::shared_ptr<const Failure> failure) : failure_(std::move(failure)) {}
  std::shared_ptr<const Failure> failure_;
};

template <typename T>
class [[nodiscard]] Expected {
 public:
  Expected(T value) : content_(std::move(value)) {}
  // `failure` must not be a success: an Expected without a value has a reason.
  Expected(Status failure) : content_(std::move(failure)) {}

  bool ok() const { return content_.index() == 0; }
  // Left out for a bool value, where a test of the result would read as its value.
  explicit operator bool() const
    requires(!std::is_same_v<T, bool>)
  {
    return ok();
  }

  T& value() { return std::get<0>(content_); }
  const T& value() const { return std::get<0>(content_); }
  T& operator*() { return value(); }
  const T& operator*() const { return value(); }
  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }

  // Success when there is a value.
  Status status() const { return ok() ? Status() : std::get<1>(content_); }

  // Marks the result as looked at and deliberately set aside.
  void ignore() const {}

 private:
  std::variant<T, Status> content_;
};

}  // namespace regmill
