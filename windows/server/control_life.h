#ifndef WINDOWS_SERVER_CONTROL_LIFE_H_
#define WINDOWS_SERVER_CONTROL_LIFE_H_

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "qorvel/frame/control_shell.h"

namespace qorvel::win {

// The life cycle of one control as an OLE container drives it, in the order the portable form
// uses: Initialize, then InitNew or Load, then SetExtent, and Close once. Containers call these
// in their own order (ATL's host loads a control before it gives it a site), so each step runs
// the ones it depends on first and refuses a repeat: Initialize comes with the first of the
// site, InitNew or Load; an extent given before InitNew or Load is kept and applied after it.
// Each event goes to the control log. The handlers' errors reach the caller.
class ControlLife {
 public:
  ControlLife(std::shared_ptr<ControlShell> shell, std::string class_name)
      : shell_(std::move(shell)), class_name_(std::move(class_name)) {}

  ControlShell& shell() const { return *shell_; }
  const std::string& class_name() const { return class_name_; }
  bool loaded() const { return loaded_; }
  bool closed() const { return closed_; }

  void Attach(std::shared_ptr<ControlSite> site) { shell_->Attach(std::move(site)); }
  void Initialize();
  // False when the control is already initialised from InitNew or Load, or closed.
  bool InitNew();
  bool Load(const PropertyBag& bag);
  void SetExtent(float width, float height);
  PropertyBag Save();
  // Terminate, once, and only for a control that was initialised.
  void Close() noexcept;

  // Before a member runs. A control whose container hasn't initialised it (no InitNew, no
  // Load) is a scripting client's, which never will: it starts here as the run-time container
  // starts one, with Initialize, InitProperties and its first extent, sited in the run-time
  // container unless a site is set. A control its container has initialised is left as it is.
  void StartForMember();

 private:
  void Log(const char* event) const;

  std::shared_ptr<ControlShell> shell_;
  std::string class_name_;
  bool initialized_ = false;
  bool loaded_ = false;
  bool closed_ = false;
  std::optional<std::pair<float, float>> pending_extent_;
};

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CONTROL_LIFE_H_
