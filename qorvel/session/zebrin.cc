#include "qorvel/session/zebrin.h"

namespace qorvel {

// A control that counts as connected binds nothing, whatever the argument says; its probe only
// finds out whether the host is still there.
void Zebrin::Connect(int32_t& ConnectionStatus) {
  if (ConnectedFlag == VariantBool::kFalse) {
    if (ConnectionStatus == 1) {
      Link().StartAndConnect();
    } else {
      Link().ConnectToRunning();
    }
  }
  ProbeVersion();
}

void Zebrin::SetInformationWindow(VariantBool onoff) {
  SendSwitch(onoff, {"ADVANCEDOPTS WINDOWS INFORMATION ON"},
             {"ADVANCEDOPTS WINDOWS INFORMATION OFF"});
}

}  // namespace qorvel
