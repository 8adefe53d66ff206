#include "qorvel/platform/env.h"

#include <atomic>

#include "qorvel/platform/numbers.h"

namespace qorvel {

namespace {
std::atomic<Env*> installed{nullptr};
}

Env& Env::Current() {
  if (Env* env = installed.load()) return *env;
  static PortableEnv* const process_env = new PortableEnv;  // lives until the process ends
  return *process_env;
}

Env* Env::Install(Env* env) { return installed.exchange(env); }

PortableEnv::PortableEnv() { SeedNumberSymbols(memory_registry_); }
PortableEnv::~PortableEnv() = default;

}  // namespace qorvel
