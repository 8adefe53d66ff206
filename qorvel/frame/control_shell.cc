#include "qorvel/frame/control_shell.h"

#include "qorvel/frame/pictures.h"
#include "qorvel/frame/type_library.h"

namespace qorvel {

ControlShell::ControlShell(std::string_view class_name)
    : host_control_(SameNameNoCase(class_name, "Zebrin") || SameNameNoCase(class_name, "Tarvik3") ||
                    SameNameNoCase(class_name, "Ulmora27")) {
  if (SameNameNoCase(class_name, "UlmoraNearestPoints") ||
      SameNameNoCase(class_name, "UlmoraSurfaceInfo")) {
    Image1 = Image{};
    Image1->Picture = ControlPicture(class_name);
  } else if (host_control_) {
    user_control.Picture = ControlPicture(class_name);
  }
}

void ControlShell::SetExtent(float width, float height) {
  user_control.Width = width;
  user_control.Height = height;
  Resize();
}

void ControlShell::Resize() {
  if (host_control_) {
    user_control.Width = 500.0f;
    user_control.Height = 500.0f;
  } else if (Image1) {
    user_control.Width = Image1->Width;
    user_control.Height = Image1->Height;
  }
}

}  // namespace qorvel
