#include "qorvel/platform/env.h"

#include <cstdint>

namespace qorvel {

PortableEnv::PortableEnv() { SeedNumberSymbols(registry_); }
PortableEnv::~PortableEnv() = default;

NumberSymbols PortableEnv::number_symbols() {
  // The hive's write stamp is unique across registries, so one cache per thread serves every
  // portable environment: the symbols are read again only when some hive changed.
  thread_local uint64_t seen = 0;
  thread_local NumberSymbols symbols;
  if (const uint64_t now = registry_.generation(); now != seen) {
    symbols = ReadNumberSymbols(registry_);
    seen = now;
  }
  return symbols;
}

}  // namespace qorvel
