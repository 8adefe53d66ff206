#include "qorvel/session/zebrin.h"

#include "qorvel/frame/session_members.h"
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

VariantBool Zebrin::Busy() { return session_members::ReadBusy(Link()); }

int32_t Zebrin::WindowState() {
  return session_members::ReadWindowState(Link(), CachedWindowState);
}

void Zebrin::SetWindowState(int32_t new_state) {
  session_members::WriteWindowState(Link(), CachedWindowState, new_state);
}

void Zebrin::SetInformationWindow(VariantBool onoff) {
  if (onoff == VariantBool::kTrue) {
    Link().HostExecute("ADVANCEDOPTS WINDOWS INFORMATION ON");
  } else if (onoff == VariantBool::kFalse) {
    Link().HostExecute("ADVANCEDOPTS WINDOWS INFORMATION OFF");
  }
}

VariantBool Zebrin::Visible() { return session_members::ReadVisible(Link(), CachedVisible); }

void Zebrin::SetVisible(VariantBool yesno) {
  session_members::WriteVisible(Link(), CachedVisible, yesno);
}

void Zebrin::Initialize() {
  ConnectedFlag = VariantBool::kFalse;
  HostVersion = 0;
}

void Zebrin::Terminate() { Disconnect(); }

}  // namespace qorvel
