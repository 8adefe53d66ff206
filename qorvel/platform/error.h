#ifndef QORVEL_PLATFORM_ERROR_H_
#define QORVEL_PLATFORM_ERROR_H_

#include <cstdint>
#include <exception>
#include <string>

namespace qorvel {

// An error a client can be given: its number and its description.
struct ErrorText {
  int32_t number;
  const char* description;
};

// The catalogue of the errors the library raises or meets.
namespace err {

// The automation runtime's own, with the descriptions a client already knows (DescriptionOf).
inline constexpr int32_t kInvalidCall = 5;     // "Invalid procedure call or argument"
inline constexpr int32_t kOverflow = 6;        // "Overflow"
inline constexpr int32_t kOutOfMemory = 7;     // "Out of memory"
inline constexpr int32_t kSubscript = 9;       // "Subscript out of range"
inline constexpr int32_t kArrayLocked = 10;    // "This array is fixed or temporarily locked"
inline constexpr int32_t kTypeMismatch = 13;   // "Type mismatch"
inline constexpr int32_t kFileNotFound = 53;   // "File not found"
inline constexpr int32_t kObjectNotSet = 91;   // "Object variable or With block variable not set"
inline constexpr int32_t kInvalidNull = 94;    // "Invalid use of Null"
inline constexpr int32_t kCantCreate = 429;    // "ActiveX component can't create object"
inline constexpr int32_t kNoMember = 438;      // "Object doesn't support this property or method"
inline constexpr int32_t kWrongArgs = 450;     // "Wrong number of arguments or invalid ..."
inline constexpr int32_t kDuplicateKey = 457;  // "This key is already associated with ..."
inline constexpr int32_t kServerGone = 462;    // "The remote server machine does not exist ..."

// The library's own. A number may carry different texts in different members; each stands
// here with the member that raises it. CR LF breaks the longer texts into lines.
inline constexpr ErrorText kOldTarvik{60000, "Control only supports Tarvik3 onwards"};
inline constexpr ErrorText kPropertyAtRunTime{393, ""};  // design-time reads of ValueBox

// UlmoraSurfaceInfo.
inline constexpr ErrorText kSurfaceNotConnected{
    60000,
    "Not connected to Ulmora.\r\nUlmora must be running, and you \r\nmust use the Reset method "
    "to connect."};
inline constexpr ErrorText kSurfaceMissing{
    60001, "The surface does not exist\r\nin the current Ulmora session"};
inline constexpr ErrorText kSurfaceGone{
    60001, "The surface no longer exists\r\nin the current Ulmora session"};
inline constexpr ErrorText kSurfaceNotKalvane{60002, "The surface is not a KalVane"};
inline constexpr ErrorText kNoSurfaceSelected{60000, "No surface selected"};
inline constexpr ErrorText kLateralOutOfRange{60004, "Lateral number out of range"};
inline constexpr ErrorText kLongitudinalOutOfRange{60005, "Longitudinal number out of range"};

// UlmoraNearestPoints, in the order of its checks.
inline constexpr ErrorText kInputsNotAlike{60009, "Input point array not equally dimensioned"};
inline constexpr ErrorText kInputsBadBounds{60006, "Input points array not defined correctly"};
inline constexpr ErrorText kNearestNotConnected{60001, "Not connected to Ulmora"};
inline constexpr ErrorText kNoSurfaceName{60002, "No surface name given"};
inline constexpr ErrorText kNoActiveModel{60003, "No active model open"};
inline constexpr ErrorText kNoSuchSurface{60004, "Surface does not exist"};

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

// The one way to raise: a runtime number with its own text, an entry of the catalogue, or a
// number with a text made for the occasion (a file name, a line).
[[noreturn]] void Raise(int32_t number);
[[noreturn]] void Raise(const ErrorText& error);
[[noreturn]] void Raise(int32_t number, std::string description);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_ERROR_H_
