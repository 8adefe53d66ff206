#include "windows/typelib/double_defaults.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace qorvel {
namespace {

constexpr uint16_t kVtR8 = 5;
constexpr uint16_t kVtBstr = 8;
constexpr size_t kPlaceholderSize = 8;  // as long as a Double, so the record keeps its size

void PutLittleEndian(uint64_t value, int size, char* out) {
  for (int i = 0; i < size; ++i) out[i] = static_cast<char>(value >> (8 * i));
}

// A text default's record: its VARIANT type, its length, then its characters.
std::string TextRecord(const std::string& text) {
  std::string record(6, '\0');
  PutLittleEndian(kVtBstr, 2, record.data());
  PutLittleEndian(text.size(), 4, record.data() + 2);
  return record + text;
}

}  // namespace

std::string DoublePlaceholder(size_t index) {
  char text[16];
  std::snprintf(text, sizeof text, "#qvR8%03u", static_cast<unsigned>(index % 1000));
  return text;
}

bool PatchDoubleDefaults(const std::vector<double>& values, std::string* bytes,
                         std::string* error) {
  if (values.size() > 1000) {
    *error = "more distinct Double defaults than placeholders";
    return false;
  }
  for (size_t i = 0; i < values.size(); ++i) {
    const std::string placeholder = DoublePlaceholder(i);
    static_assert(sizeof(double) == kPlaceholderSize);
    const std::string record = TextRecord(placeholder);
    uint64_t bits;
    std::memcpy(&bits, &values[i], sizeof bits);
    // Each parameter may have a record of its own, or share one with the others of its value.
    size_t found = 0;
    for (size_t at = bytes->find(record); at != std::string::npos;
         at = bytes->find(record, at + record.size())) {
      char* out = bytes->data() + at;
      PutLittleEndian(kVtR8, 2, out);
      PutLittleEndian(bits, 8, out + 2);
      PutLittleEndian(0, 4, out + 10);  // the rest of the old record, unread now
      ++found;
    }
    if (found == 0) {
      *error = "the default record of " + placeholder + " is not in the library";
      return false;
    }
  }
  return true;
}

}  // namespace qorvel
