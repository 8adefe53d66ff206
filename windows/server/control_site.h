#ifndef WINDOWS_SERVER_CONTROL_SITE_H_
#define WINDOWS_SERVER_CONTROL_SITE_H_

#include <windows.h>

#include <ole2.h>

#include <atomic>
#include <functional>
#include <string_view>

#include "qorvel/frame/control_shell.h"
#include "qorvel/platform/com_windows.h"

namespace qorvel::win {

// An OLE container's client site as the control sees it. UserMode is the site's ambient
// property, read when the site comes and again when the container says it changed; a site
// that doesn't answer (ATL's host has no ambient properties) is taken to run.
class ClientSite final : public ControlSite {
 public:
  using Changed = std::function<void(std::string_view name)>;
  ClientSite(IOleClientSite* site, Changed changed);

  bool UserMode() const override { return user_mode_; }
  void PropertyChanged(std::string_view name) override;
  // Reads the ambient UserMode again.
  void RefreshUserMode();
  IOleClientSite* get() const { return site_.get(); }

 private:
  ComPtr<IOleClientSite> site_;
  Changed changed_;
  std::atomic<bool> user_mode_{true};
};

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CONTROL_SITE_H_
