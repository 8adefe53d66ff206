#ifndef WINDOWS_TESTS_CHECKS_H_
#define WINDOWS_TESTS_CHECKS_H_

// The report of an acceptance program that stops at the first difference: each check prints
// what it looked at, and a failed one throws, so the guards that put back the user's settings
// still run on the way out.

#include <stdexcept>
#include <string>

namespace qorvel::win::testing {

struct CheckFailed : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Prints "ok: what", or throws CheckFailed with "what".
void Check(bool ok, const std::string& what);
// A check that this run can't make, and why; not a failure.
void NotChecked(const std::string& what, const std::string& why);
// A heading or a measurement.
void Note(const std::string& text);
// How many checks passed and how many couldn't be made.
int PassedChecks();
int UncheckedChecks();

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_CHECKS_H_
