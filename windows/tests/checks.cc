#include "windows/tests/checks.h"

#include <cstdio>

namespace qorvel::win::testing {
namespace {

int passed = 0;
int unchecked = 0;

}  // namespace

void Check(bool ok, const std::string& what) {
  if (!ok) throw CheckFailed(what);
  ++passed;
  std::printf("ok: %s\n", what.c_str());
  std::fflush(stdout);  // the runner shows progress while the program waits for screenshots
}

void NotChecked(const std::string& what, const std::string& why) {
  ++unchecked;
  std::printf("not checked: %s (%s)\n", what.c_str(), why.c_str());
  std::fflush(stdout);
}

void Note(const std::string& text) {
  std::printf("%s\n", text.c_str());
  std::fflush(stdout);
}

int PassedChecks() { return passed; }
int UncheckedChecks() { return unchecked; }

}  // namespace qorvel::win::testing
