#ifndef QORVEL_FRAME_CONTROL_SHELL_H_
#define QORVEL_FRAME_CONTROL_SHELL_H_

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qorvel/frame/property_bag.h"
#include "qorvel/platform/text_box.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// The control's own surface and its constituent image, sizes in twips (1440 to the inch).
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

class Container;

// How a control sits on its form: the size it keeps and where its design-time picture goes.
enum class ShellSize {
  kHostControl,  // 500 by 500, whatever is asked; the picture on the UserControl
  kImage,        // that of Image1, which holds the picture
  kFree,         // as the container asks, or as the control's own Resize sets it
  kTextBox,      // free, with a Text1 at (0, 0) that the control's own Resize sizes
};
struct ShellTraits {
  ShellSize size;
  std::span<const uint8_t> picture;
};

// What every control shares as a control: its surface, its Image1 or Text1 if it has one, the
// events its container sends and the ambient properties it reads. A control overrides the handlers
// it has; the default Resize keeps the size its traits give.
class ControlShell {
 public:
  explicit ControlShell(const ShellTraits& traits);
  virtual ~ControlShell() = default;
  ControlShell(const ControlShell&) = delete;
  ControlShell& operator=(const ControlShell&) = delete;

  virtual void Initialize() {}
  virtual void InitProperties() {}
  virtual void ReadProperties(const PropertyBag& /*bag*/) {}
  virtual void WriteProperties(PropertyBag& /*bag*/) {}
  virtual void Resize();
  virtual void Terminate() {}

  // The container's ambient UserMode: true at run time, false in a form designer. A control
  // not sited yet is taken to run.
  bool UserMode() const;
  // Tells the container that a saved property has changed, so it has something to save.
  void PropertyChanged(std::string_view name);
  Container* container() const { return container_.get(); }

  UserControl user_control;
  std::optional<Image> Image1;   // only the controls whose size is that of their image
  std::optional<TextBox> Text1;  // only the controls that are a text box (kTextBox)

 private:
  friend class Container;
  // A control keeps its form alive: a script may hold a control after letting its form go.
  std::shared_ptr<Container> container_;
  ShellSize size_;
};

// A form that holds controls: it creates them, sends them their events, offers the ambient
// UserMode and keeps what they save. It is always owned by a shared_ptr, and every control
// sited in it holds a share, so it outlives them.
class Container : public std::enable_shared_from_this<Container> {
 public:
  explicit Container(bool user_mode = true) : UserMode(user_mode) {}
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;

  // The run-time container of the process, where controls that nobody placed elsewhere sit,
  // CreateObject's among them. It is never destroyed.
  static Container& RunTime();

  // Sites a new control: Initialize, then InitProperties, or ReadProperties when `saved` holds
  // its saved state, then its first extent with Resize. Its owner sends Terminate, once, when
  // the last reference goes. A failure of Initialize or of the first Resize reaches the caller
  // and the control is dropped without Terminate.
  template <class Control>
  std::shared_ptr<Control> Site(std::unique_ptr<Control> control,
                                const PropertyBag* saved = nullptr) {
    Start(*control, saved);
    return std::shared_ptr<Control>(control.release(), [](Control* c) {
      End(*c);
      delete c;
    });
  }

  // A new extent, as the container or a designer's user asks for it, then Resize; a handler
  // that changes the size again gets one more Resize for each change, as the platform sends it.
  static void SetExtent(ControlShell& control, float width, float height);
  // The control's state for saving: WriteProperties into a new bag.
  static PropertyBag Save(ControlShell& control);

  // The ambient UserMode that the controls read.
  bool UserMode;
  // The names the controls reported changed through PropertyChanged since the form was last
  // saved: each once, in the order of its first change, so a control written a million times
  // adds nothing.
  std::vector<std::string> property_changes() const;
  void ClearPropertyChanges();

 private:
  friend class ControlShell;

  // The extent a new control gets before its first Resize.
  static constexpr float kFirstExtent = 2400;

  void Start(ControlShell& control, const PropertyBag* saved);
  static void End(ControlShell& control) noexcept;
  void NoteChange(std::string_view name);

  mutable std::mutex mu_;  // controls of several threads may share the run-time container
  std::vector<std::string> changes_;
};

}  // namespace qorvel

#endif  // QORVEL_FRAME_CONTROL_SHELL_H_
