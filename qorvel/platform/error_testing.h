#ifndef QORVEL_PLATFORM_ERROR_TESTING_H_
#define QORVEL_PLATFORM_ERROR_TESTING_H_

#include <cstdint>

#include "qorvel/platform/error.h"

namespace qorvel {

// For tests: the number of the error a statement raises, 0 when it raises none.
template <class Statement>
int32_t ErrorOf(Statement&& statement) {
  try {
    statement();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_ERROR_TESTING_H_
