#ifndef QORVEL_FRAME_CONTROL_SHELL_H_
#define QORVEL_FRAME_CONTROL_SHELL_H_

#include <atomic>
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

class ClassObject;
class ControlShell;

// The events a container sends a control, as handlers that do nothing. A control class derives
// from it and overrides the handlers it has, with `override`, so a misspelt one doesn't compile.
// Sited comes first of all, with the control's shell (for UserMode, Text1, its size) and its
// face (to raise events).
class ControlEvents {
 public:
  virtual ~ControlEvents() = default;
  virtual void Sited(ControlShell& /*shell*/, ClassObject& /*face*/) {}
  virtual void Initialize() {}
  virtual void InitProperties() {}
  virtual void ReadProperties(const PropertyBag& /*bag*/) {}
  virtual void WriteProperties(PropertyBag& /*bag*/) {}
  virtual void Resize() {}
  virtual void Terminate() {}
};

// What a control sits in, as the control sees it: the ambient UserMode it reads and the place
// it reports changed properties to. The portable form (Container) is one; the Windows face's
// client site is another.
class ControlSite {
 public:
  virtual ~ControlSite() = default;
  // True at run time, false in a form designer.
  virtual bool UserMode() const = 0;
  // A saved property has changed, so the site has something to save.
  virtual void PropertyChanged(std::string_view name) = 0;
};

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

// What every control shares as a control: its surface, its Image1 or Text1 if it has one, and
// its life cycle as a container drives it, step by step. Both containers, the portable form and
// the Windows client site, drive the same steps in the same order:
//   Attach, Initialize, then InitNew or Load, then SetExtent as often as the container likes,
//   Save when it saves, and Close (Terminate) once at the end.
class ControlShell {
 public:
  explicit ControlShell(const ShellTraits& traits, ControlEvents& events);
  virtual ~ControlShell() = default;
  ControlShell(const ControlShell&) = delete;
  ControlShell& operator=(const ControlShell&) = delete;

  void Attach(std::shared_ptr<ControlSite> site);
  void Initialize() { events_.Initialize(); }
  void InitNew() { events_.InitProperties(); }
  void Load(const PropertyBag& bag) { events_.ReadProperties(bag); }
  // A new extent in twips, then Resize; a handler that changes the size again gets one more
  // Resize for each change, as the platform sends it (up to a limit).
  void SetExtent(float width, float height);
  PropertyBag Save();
  // Terminate, once, however often the container closes; its failure stops nothing more.
  void Close() noexcept;

  // The site's ambient UserMode; a control not sited yet is taken to run.
  bool UserMode() const;
  // Tells the site that a saved property has changed, so it has something to save.
  void PropertyChanged(std::string_view name);
  ControlSite* site() const { return site_.get(); }
  ShellSize size_kind() const { return size_; }

  UserControl user_control;
  std::optional<Image> Image1;   // only the controls whose size is that of their image
  std::optional<TextBox> Text1;  // only the controls that are a text box (kTextBox)

 private:
  // The size the shell's kind gives, before the control's own Resize handler.
  void KeepSize();

  ControlEvents& events_;
  // A control keeps its site alive: a script may hold a control after letting its form go.
  std::shared_ptr<ControlSite> site_;
  ShellSize size_;
  bool closed_ = false;
};

// A form that holds controls: it creates them, sends them their events, offers the ambient
// UserMode and keeps the names of what they changed. It is always owned by a shared_ptr, and
// every control sited in it holds a share, so it outlives them.
class Container final : public ControlSite, public std::enable_shared_from_this<Container> {
 public:
  explicit Container(bool user_mode = true) : user_mode_(user_mode) {}
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
      c->Close();
      delete c;
    });
  }

  bool UserMode() const override { return user_mode_; }
  void set_user_mode(bool user_mode) { user_mode_ = user_mode; }
  void PropertyChanged(std::string_view name) override;
  // The names the controls reported changed since the form was last saved: each once, in the
  // order of its first change, so a control written a million times adds nothing.
  std::vector<std::string> property_changes() const;
  void ClearPropertyChanges();

 private:
  // The extent a new control gets before its first Resize.
  static constexpr float kFirstExtent = 2400;

  void Start(ControlShell& control, const PropertyBag* saved);

  std::atomic<bool> user_mode_;
  mutable std::mutex mu_;  // controls of several threads may share the run-time container
  std::vector<std::string> changes_;
};

}  // namespace qorvel

#endif  // QORVEL_FRAME_CONTROL_SHELL_H_
