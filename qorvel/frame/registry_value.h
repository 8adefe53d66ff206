#ifndef QORVEL_FRAME_REGISTRY_VALUE_H_
#define QORVEL_FRAME_REGISTRY_VALUE_H_

#include <cstdint>
#include <string>

namespace qorvel {

inline constexpr const char* kNotFound = "Not Found";

// One named value of one registry key as text, whatever its type, or "Not Found". Never raises.
std::string ReadRegistryValue(uint32_t hive, const std::string& sub_key,
                              const std::string& value_name);

}  // namespace qorvel

#endif  // QORVEL_FRAME_REGISTRY_VALUE_H_
