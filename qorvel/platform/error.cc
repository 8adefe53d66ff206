#include "qorvel/platform/error.h"

#include "qorvel/platform/automation_error.h"

namespace qorvel {

std::string DescriptionOf(int32_t number) {
  switch (number) {
    case err::kInvalidCall:
      return "Invalid procedure call or argument";
    case err::kOverflow:
      return "Overflow";
    case err::kOutOfMemory:
      return "Out of memory";
    case err::kSubscript:
      return "Subscript out of range";
    case err::kArrayLocked:
      return "This array is fixed or temporarily locked";
    case err::kTypeMismatch:
      return "Type mismatch";
    case err::kFileNotFound:
      return "File not found";
    case err::kObjectNotSet:
      return "Object variable or With block variable not set";
    case err::kInvalidNull:
      return "Invalid use of Null";
    case err::kCantCreate:
      return "ActiveX component can't create object";
    case err::kNoMember:
      return "Object doesn't support this property or method";
    case err::kWrongArgs:
      return "Wrong number of arguments or invalid property assignment";
    case err::kDuplicateKey:
      return "This key is already associated with an element of this collection";
    case err::kServerGone:
      return "The remote server machine does not exist or is unavailable";
    default:
      return "Application-defined or object-defined error";
  }
}

Error::Error(int32_t number) : Error(number, DescriptionOf(number)) {}

void Raise(int32_t number) { throw Error(number); }
void Raise(const ErrorText& error) { throw Error(error.number, error.description); }
void Raise(int32_t number, std::string description) { throw Error(number, std::move(description)); }

namespace {
thread_local int32_t automation_error = 0;
}

int32_t AutomationError() { return automation_error; }
void SetAutomationError(int32_t number) { automation_error = number; }

}  // namespace qorvel
