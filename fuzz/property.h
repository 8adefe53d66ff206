#ifndef FUZZ_PROPERTY_H_
#define FUZZ_PROPERTY_H_

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "qorvel/platform/error.h"

namespace qorvel::fuzz {

// A broken property stops the fuzzer as a crash does, so libFuzzer keeps the input.
[[noreturn]] inline void Broken(const char* what) {
  std::fprintf(stderr, "broken property: %s\n", what);
  std::abort();
}

inline void Expect(bool holds, const char* what) {
  if (!holds) Broken(what);
}

// Runs `statement`; an error it raises must be one of `allowed`. Returns whether it ran through.
template <class Statement>
bool RunAllowing(const std::vector<int32_t>& allowed, Statement&& statement) {
  try {
    statement();
    return true;
  } catch (const Error& e) {
    for (int32_t number : allowed) {
      if (e.number() == number) return false;
    }
    std::fprintf(stderr, "broken property: error %d escaped: %s\n", e.number(),
                 e.description().c_str());
    std::abort();
  }
}

}  // namespace qorvel::fuzz

#endif  // FUZZ_PROPERTY_H_
