#ifndef QORVEL_PLATFORM_PROCESS_H_
#define QORVEL_PLATFORM_PROCESS_H_

#include <string>

namespace qorvel {

// Starts the program at `path` with no arguments and lets it run on its own; false when it
// can't be started (no such file, not executable, not a program).
bool StartProcess(const std::string& path);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_PROCESS_H_
