#ifndef QORVEL_FRAME_PICTURES_H_
#define QORVEL_FRAME_PICTURES_H_

#include <cstdint>
#include <span>
#include <string_view>

namespace qorvel {

// The design-time picture of a control (an .ico image: 16 colours for the host controls, 256
// for the surface controls); empty for ValueBox and PointClass.
std::span<const uint8_t> ControlPicture(std::string_view class_name);
// A toolbox bitmap by its resource number, 30000 to 30005: a 16x15 24-bit bitmap with its
// 40-byte header; empty for other numbers.
std::span<const uint8_t> ToolboxBitmap(int32_t number);

}  // namespace qorvel

#endif  // QORVEL_FRAME_PICTURES_H_
