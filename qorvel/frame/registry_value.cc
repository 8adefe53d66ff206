#include "qorvel/frame/registry_value.h"

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {
namespace {

constexpr uint32_t kBufferSize = 2048;

// The text path cuts the value by its byte count; a size of 0 can't be cut and leaves the
// buffer as it came back.
void CutToSize(std::string& buffer, uint32_t data_size) {
  if (data_size == 0) Raise(err::kInvalidCall);
  buffer.resize(data_size - 1);
}

}  // namespace

std::string ReadRegistryValue(uint32_t hive, const std::string& sub_key,
                              const std::string& value_name) {
  Registry& registry = Env::Current().registry();
  RegKey key_handle = 0;
  registry.RegOpenKeyA(hive, sub_key, &key_handle);
  std::string buffer(kBufferSize, ' ');
  uint32_t data_size = kBufferSize;
  uint32_t value_type = 0;
  int32_t result = reg_status::kInvalidHandle;
  const bool called = HoldBack([&] {
    result = registry.RegQueryValueExA(key_handle, value_name, nullptr, &value_type,
                                       reinterpret_cast<uint8_t*>(buffer.data()), &data_size);
  });
  if (called && result == reg_status::kSuccess) {
    if (value_type == reg_type::kDword) {
      const auto b = [&](int i) { return static_cast<uint8_t>(buffer[i]); };
      const int32_t low = b(0) + b(1) * 256 + b(2) * 65536;
      buffer = FormatPattern(b(3) * 16777216.0 + low, "000");
    } else {
      HoldBack([&] { CutToSize(buffer, data_size); });
    }
  } else {
    buffer = kNotFound;
  }
  registry.RegCloseKey(key_handle);
  return buffer;
}

}  // namespace qorvel
