#pragma once
// A failure raised by a routine of the system. Routines that let failures go up to their caller
// throw this; routines that swallow or convert failures catch it (and only it, plus the
// standard library's own failures, which are treated the same way).
#include <cstdint>
#include <stdexcept>
#include <string>

namespace quorvane {

enum class FailureNumber : std::int32_t {
  InvalidProcedureCall = 5,
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  TypeMismatch = 13,
  BadFileNameOrNumber = 52,
  FileNotFound = 53,
  BadFileMode = 54,
  FileAlreadyOpen = 55,
  DeviceIOError = 57,
  FileAlreadyExists = 58,
  PermissionDenied = 70,
  PathFileAccessError = 75,
  PathNotFound = 76,
  ObjectVariableNotSet = 91,
  InvalidPicture = 481,
};

class Failure : public std::runtime_error {
 public:
  Failure(FailureNumber number, const std::string& description)
      : std::runtime_error(description), number_(number) {}

  FailureNumber Number() const noexcept { return number_; }

 private:
  FailureNumber number_;
};

// The usual descriptions, so that a report of one reads the same wherever it is raised.
[[noreturn]] void RaiseOverflow();
[[noreturn]] void RaiseInvalidProcedureCall();
[[noreturn]] void RaiseObjectVariableNotSet();
[[noreturn]] void RaiseSubscriptOutOfRange();
[[noreturn]] void Raise(FailureNumber number, const std::string& description);

}  // namespace quorvane
