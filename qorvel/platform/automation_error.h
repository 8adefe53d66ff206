#ifndef QORVEL_PLATFORM_AUTOMATION_ERROR_H_
#define QORVEL_PLATFORM_AUTOMATION_ERROR_H_

#include <cstdint>
#include <new>
#include <stdexcept>
#include <utility>

#include "qorvel/platform/error.h"

namespace qorvel {

// The error number the last held-back statement left on this thread; 0 means success.
int32_t AutomationError();
void SetAutomationError(int32_t number);

// Runs `work` with an allocation that fails inside it (std::bad_alloc, or std::length_error
// from a container asked for more than it can hold) raised as error 7, as the runtime reports
// memory it can't have. Raising 7 allocates nothing: its description fits the string in place.
template <class Work>
decltype(auto) OutOfMemoryAsError(Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (const std::bad_alloc&) {
    Raise(err::kOutOfMemory);
  } catch (const std::length_error&) {
    Raise(err::kOutOfMemory);
  }
}

// Errors held back: clears AutomationError and runs one statement; a raised error, or memory
// that can't be had (7), skips the rest of it, is recorded as the thread's AutomationError and
// reported as false. Whatever the statement was to assign keeps its old value, because the
// assignment sits inside the statement that failed.
template <class Statement>
bool HoldBack(Statement&& statement) {
  SetAutomationError(0);
  try {
    OutOfMemoryAsError(std::forward<Statement>(statement));
    return true;
  } catch (const Error& e) {
    SetAutomationError(e.number());
    return false;
  }
}

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_AUTOMATION_ERROR_H_
