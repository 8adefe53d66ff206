#ifndef QORVEL_SESSION_ZEBRIN_H_
#define QORVEL_SESSION_ZEBRIN_H_

#include <cstdint>
#include <string>

#include "qorvel/frame/host_session.h"

namespace qorvel {

// The smallest host control: the session family on this thread's Zebrin link, with no gate.
class Zebrin : public HostSession {
 public:
  Zebrin() : HostSession(Host::kZebrin) {}

  // ZebrinConnectType: 1 starts the host through the registry, any other value binds only. The
  // client's variable is only read.
  void Connect(int32_t& ConnectionStatus);
  std::string ExecuteEx(const std::string& command) { return Link().HostExecuteEx(command); }
  void ExitZebrin() { ExitHost(); }
  void SetInformationWindow(VariantBool onoff);
};

}  // namespace qorvel

#endif  // QORVEL_SESSION_ZEBRIN_H_
