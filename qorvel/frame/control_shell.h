#ifndef QORVEL_FRAME_CONTROL_SHELL_H_
#define QORVEL_FRAME_CONTROL_SHELL_H_

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "qorvel/platform/variant.h"

namespace qorvel {

// What the container offers a control: the ambient UserMode (false in a form designer) and the
// property bag it keeps for the control.
struct Container {
  bool UserMode = true;
  std::map<std::string, Variant> property_bag;
};

// The control's own surface and its constituent image, sizes in twips.
struct UserControl {
  float Width = 0;
  float Height = 0;
  std::span<const uint8_t> Picture;  // the design-time picture, drawn from the top left
};
struct Image {
  float Left = 0;
  float Top = 0;
  float Width = 480;  // 32 pixels at 15 twips to the pixel
  float Height = 480;
  std::span<const uint8_t> Picture;
};

// The shell every control shares: its size rules and its container. Host controls keep 500 by
// 500 whatever is asked; the surface controls take the size of their Image1.
class ControlShell {
 public:
  explicit ControlShell(std::string_view class_name);

  // The container gives the control an extent, then sends Resize.
  void SetExtent(float width, float height);
  // The control's Resize handler.
  void Resize();

  Container container;
  UserControl user_control;
  std::optional<Image> Image1;  // only the two surface controls have one

 private:
  bool host_control_;
};

}  // namespace qorvel

#endif  // QORVEL_FRAME_CONTROL_SHELL_H_
