#ifndef QORVEL_SESSION_ZEBRIN_H_
#define QORVEL_SESSION_ZEBRIN_H_

#include <cstdint>
#include <string>

#include "qorvel/frame/host_link.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// The smallest host control: a session with Zebrin through this thread's Zebrin link. The
// fields are a record of the last probe, not a watch on the host.
class Zebrin {
 public:
  // ZebrinConnectType: 1 starts the host through the registry, any other value binds only.
  void Connect(int32_t connection_status = 0);
  void Execute(const std::string& command);
  std::string ExecuteEx(const std::string& command);
  void Disconnect();
  void ExitZebrin();
  int16_t version();
  VariantBool Connected();
  VariantBool Busy();
  int32_t WindowState();
  void SetWindowState(int32_t new_state);
  void SetInformationWindow(VariantBool onoff);
  VariantBool Visible();
  void SetVisible(VariantBool yesno);

  // Control life, sent by the container.
  void Initialize();
  void Terminate();

 private:
  void ProbeVersion();
  static HostLink& Link() { return HostLink::Of(Host::kZebrin); }

  VariantBool ConnectedFlag = VariantBool::kFalse;
  int16_t HostVersion = 0;
  int16_t CachedWindowState = 0;
  VariantBool CachedVisible = VariantBool::kFalse;
};

}  // namespace qorvel

#endif  // QORVEL_SESSION_ZEBRIN_H_
