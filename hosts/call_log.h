#ifndef HOSTS_CALL_LOG_H_
#define HOSTS_CALL_LOG_H_

#include <string>
#include <vector>

#include "hosts/sim_object.h"

namespace qorvel::hosts {

// A call as one line of text, the form every script face prints a log in: "version",
// "WindowState = 2", "Execute(\"ECHO a\", 0)", and for a call to an object of the host, named by
// it: "Document.Name".
std::string LogLine(const Call& call);
// The log of `object`'s host, oldest first, one line a call.
std::vector<std::string> LogLines(const SimObject& object);

}  // namespace qorvel::hosts

#endif  // HOSTS_CALL_LOG_H_
