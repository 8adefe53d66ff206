#ifndef QORVEL_FRAME_HOST_SESSION_H_
#define QORVEL_FRAME_HOST_SESSION_H_

#include <cstdint>
#include <initializer_list>
#include <string>

#include "qorvel/frame/control_shell.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// The session family of the three host controls: a session with one host through this thread's
// link, and the four fields that record what the control last learnt of it. A control adds its
// own Connect, the name of its exit member and its other members, and overrides the probe's gate
// where it differs: how the version is read, which versions it accepts, what a refusal does and
// what it drops with the connection.
class HostSession : public ControlEvents {
 public:
  // On a form the three are icons of 500 by 500 that don't show at run time.
  static constexpr ShellSize kShell = ShellSize::kHostControl;

  void Execute(const std::string& command);
  void Disconnect();
  int16_t version();
  VariantBool Connected();
  VariantBool Busy();
  int32_t WindowState();
  void SetWindowState(int32_t NewState);
  VariantBool Visible();
  void SetVisible(VariantBool yesno);

  // Control life, sent by the container.
  void Initialize();
  void Terminate();

 protected:
  explicit HostSession(Host host) : host_(host) {}
  virtual ~HostSession() = default;
  HostSession(const HostSession&) = delete;
  HostSession& operator=(const HostSession&) = delete;

  HostLink& Link() const { return HostLink::Of(host_); }

  // Every path that can change the link ends here, and version and Connected run it on each
  // read: the host's answer to version is the only test of a connection.
  void ProbeVersion();
  // The exit member: the host's Exit and a probe, both held back. The link stays bound, so a
  // host that needs a moment to close still counts as connected.
  void ExitHost();
  // A switch of two host settings: the `on` commands for -1, the `off` commands for 0, nothing
  // for any other value.
  void SendSwitch(VariantBool onoff, std::initializer_list<const char*> on,
                  std::initializer_list<const char*> off);

  // The gate. The version as the probe reads it: 0 when no host answers or the reply doesn't
  // convert to 16 bits, both held back.
  virtual int16_t FetchVersion();
  // Whether the control works with a host of this non-zero version.
  virtual bool Accepts(int16_t /*version*/) const { return true; }
  // What a probe does, with the fields already cleared, about a host it doesn't accept.
  virtual void Refuse() {}
  // What the control drops, beside the two fields, whenever a probe finds no acceptable host.
  virtual void Dropped() {}

  VariantBool ConnectedFlag = VariantBool::kFalse;
  int16_t HostVersion = 0;
  int16_t CachedWindowState = 0;
  VariantBool CachedVisible = VariantBool::kFalse;

 private:
  const Host host_;
};

}  // namespace qorvel

#endif  // QORVEL_FRAME_HOST_SESSION_H_
