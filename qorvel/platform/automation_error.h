#ifndef QORVEL_PLATFORM_AUTOMATION_ERROR_H_
#define QORVEL_PLATFORM_AUTOMATION_ERROR_H_

#include <cstdint>
#include <utility>

#include "qorvel/platform/error.h"

namespace qorvel {

// The error number the last held-back statement left on this thread; 0 means success.
int32_t AutomationError();
void SetAutomationError(int32_t number);

// Errors held back: clears AutomationError and runs one statement; a raised error skips the
// rest of it, is recorded as the thread's AutomationError and reported as false. Whatever the
// statement was to assign keeps its old value, because the assignment sits inside the
// statement that failed.
template <class Statement>
bool HoldBack(Statement&& statement) {
  SetAutomationError(0);
  try {
    std::forward<Statement>(statement)();
    return true;
  } catch (const Error& e) {
    SetAutomationError(e.number());
    return false;
  }
}

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_AUTOMATION_ERROR_H_
