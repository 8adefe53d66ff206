#include "qorvel/platform/env.h"

namespace qorvel {

// On POSIX systems the portable environment is the platform itself.
Env& Env::Default() {
  static PortableEnv* const env = new PortableEnv;  // lives until the process ends
  return *env;
}

}  // namespace qorvel
