#include "qorvel/frame/pictures.h"

#include "pictures_data.inc"
#include "qorvel/platform/text.h"

namespace qorvel {

std::span<const uint8_t> ControlPicture(std::string_view class_name) {
  const std::pair<const char*, std::span<const uint8_t>> pictures[] = {
      {"Zebrin", k_zebrin_ico},
      {"Tarvik3", k_tarvik3_ico},
      {"Ulmora27", k_ulmora27_ico},
      {"UlmoraNearestPoints", k_ulmoranearestpoints_ico},
      {"UlmoraSurfaceInfo", k_ulmorasurfaceinfo_ico}};
  for (const auto& [name, bytes] : pictures) {
    if (EqualsNoCase(name, class_name)) return bytes;
  }
  return {};
}

std::span<const uint8_t> ToolboxBitmap(int32_t number) {
  const std::span<const uint8_t> bitmaps[] = {k_toolbox_30000_dib, k_toolbox_30001_dib,
                                              k_toolbox_30002_dib, k_toolbox_30003_dib,
                                              k_toolbox_30004_dib, k_toolbox_30005_dib};
  if (number < 30000 || number > 30005) return {};
  return bitmaps[number - 30000];
}

}  // namespace qorvel
