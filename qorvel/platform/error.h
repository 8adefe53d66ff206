#ifndef QORVEL_PLATFORM_ERROR_H_
#define QORVEL_PLATFORM_ERROR_H_

#include <cstdint>
#include <exception>
#include <string>

namespace qorvel {

// The runtime error numbers the library raises or meets. The descriptions are those of the
// automation runtime, so a client sees the texts it already knows.
namespace err {
inline constexpr int32_t kInvalidCall = 5;    // "Invalid procedure call or argument"
inline constexpr int32_t kOverflow = 6;       // "Overflow"
inline constexpr int32_t kSubscript = 9;      // "Subscript out of range"
inline constexpr int32_t kArrayLocked = 10;   // "This array is fixed or temporarily locked"
inline constexpr int32_t kTypeMismatch = 13;  // "Type mismatch"
inline constexpr int32_t kFileNotFound = 53;  // "File not found"
inline constexpr int32_t kObjectNotSet = 91;  // "Object variable or With block variable not set"
inline constexpr int32_t kInvalidNull = 94;   // "Invalid use of Null"
inline constexpr int32_t kCantCreate = 429;   // "ActiveX component can't create object"
inline constexpr int32_t kNoMember = 438;     // "Object doesn't support this property or method"
inline constexpr int32_t kWrongArgs =
    450;  // "Wrong number of arguments or invalid property assignment"
inline constexpr int32_t kServerGone =
    462;  // "The remote server machine does not exist or is unavailable"
}  // namespace err

// A raised automation error: a number and a description, nothing else (no source, no help).
class Error : public std::exception {
 public:
  Error(int32_t number, std::string description)
      : number_(number), description_(std::move(description)) {}
  explicit Error(int32_t number);  // with the runtime's own description

  int32_t number() const { return number_; }
  const std::string& description() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int32_t number_;
  std::string description_;
};

// The runtime's description of a standard error number; "Application-defined or object-defined
// error" for numbers it has no text for.
std::string DescriptionOf(int32_t number);

[[noreturn]] void Raise(int32_t number);
[[noreturn]] void Raise(int32_t number, std::string description);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_ERROR_H_
