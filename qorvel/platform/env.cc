#include "qorvel/platform/env.h"

#include <atomic>

namespace qorvel {

namespace {
std::atomic<Env*> installed{nullptr};
}

Env& Env::Current() {
  if (Env* env = installed.load()) return *env;
  return Default();
}

Env* Env::Install(Env* env) { return installed.exchange(env); }

PortableEnv* PortableEnvOf(Env& env) {
  for (Env* e = &env;;) {
    if (auto* portable = dynamic_cast<PortableEnv*>(e)) return portable;
    auto* wrapper = dynamic_cast<EnvWrapper*>(e);
    if (wrapper == nullptr) return nullptr;
    e = wrapper->target();
  }
}

}  // namespace qorvel
