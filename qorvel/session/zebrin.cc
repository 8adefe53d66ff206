#include "qorvel/session/zebrin.h"

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"

namespace qorvel {

void Zebrin::ProbeVersion() {
  ClearAutomationError();
  HoldBack([&] { HostVersion = GetMember(Link().object(), "version").ToInteger(); });
  if (AutomationError() != 0 || HostVersion == 0) {
    HostVersion = 0;
    ConnectedFlag = VariantBool::kFalse;
  } else {
    ConnectedFlag = VariantBool::kTrue;
  }
}

void Zebrin::Connect(int32_t connection_status) {
  if (ConnectedFlag == VariantBool::kFalse) {
    if (connection_status == 1) {
      Link().StartAndConnect();
    } else {
      Link().ConnectToRunning();
    }
  }
  ProbeVersion();
}

void Zebrin::Execute(const std::string& command) { Link().HostExecute(command); }

std::string Zebrin::ExecuteEx(const std::string& command) { return Link().HostExecuteEx(command); }

void Zebrin::Disconnect() {
  Link().Clear();
  ProbeVersion();
}

void Zebrin::ExitZebrin() {
  HoldBack([&] { CallMember(Link().object(), "Exit"); });
  ProbeVersion();
}

int16_t Zebrin::version() {
  ProbeVersion();
  return HostVersion;
}

VariantBool Zebrin::Connected() {
  ProbeVersion();
  return ConnectedFlag;
}

VariantBool Zebrin::Busy() {
  VariantBool busy = VariantBool::kFalse;
  ClearAutomationError();
  HoldBack([&] { busy = GetMember(Link().object(), "Busy").ToBool(); });
  return AutomationError() != 0 ? VariantBool::kFalse : busy;
}

int32_t Zebrin::WindowState() {
  ClearAutomationError();
  HoldBack([&] { CachedWindowState = GetMember(Link().object(), "WindowState").ToInteger(); });
  if (AutomationError() != 0) CachedWindowState = 0;
  return CachedWindowState;
}

void Zebrin::SetWindowState(int32_t new_state) {
  if (new_state != 8 && new_state != 2 && new_state != 4 && new_state != 1) return;
  CachedWindowState = static_cast<int16_t>(new_state);
  ClearAutomationError();
  HoldBack([&] { SetMember(Link().object(), "WindowState", Variant(CachedWindowState)); });
}

void Zebrin::SetInformationWindow(VariantBool onoff) {
  if (onoff == VariantBool::kTrue) {
    Link().HostExecute("ADVANCEDOPTS WINDOWS INFORMATION ON");
  } else if (onoff == VariantBool::kFalse) {
    Link().HostExecute("ADVANCEDOPTS WINDOWS INFORMATION OFF");
  }
}

VariantBool Zebrin::Visible() {
  HoldBack([&] { CachedVisible = GetMember(Link().object(), "Visible").ToBool(); });
  return CachedVisible;
}

// Errors are not held back here: a host that doesn't answer fails the member.
void Zebrin::SetVisible(VariantBool yesno) {
  const AutomationObject& host = Link().object();
  // Both tests read the host, the second only when the first fails: a value other than -1 and
  // 0 reads it twice and writes nothing.
  const bool hidden = GetMember(host, "Visible").ToBool() == VariantBool::kFalse;
  if (yesno == VariantBool::kTrue && hidden) {
    SetMember(host, "Visible", Variant(VariantBool::kTrue));
  } else if (GetMember(host, "Visible").ToBool() == VariantBool::kTrue &&
             yesno == VariantBool::kFalse) {
    SetMember(host, "Visible", Variant(VariantBool::kFalse));
  }
  CachedVisible = yesno;
}

void Zebrin::Initialize() {
  ConnectedFlag = VariantBool::kFalse;
  HostVersion = 0;
}

void Zebrin::Terminate() { Disconnect(); }

}  // namespace qorvel
