#include "qorvel/frame/host_session.h"

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"

namespace qorvel {

int16_t HostSession::FetchVersion() {
  int16_t version = 0;
  HoldBack([&] { version = GetMember(Link().object(), "version").ToInteger(); });
  return version;
}

void HostSession::ProbeVersion() {
  HostVersion = FetchVersion();
  if (HostVersion != 0 && Accepts(HostVersion)) {
    ConnectedFlag = VariantBool::kTrue;
    return;
  }
  const bool refused = HostVersion != 0;
  HostVersion = 0;
  ConnectedFlag = VariantBool::kFalse;
  Dropped();
  if (refused) Refuse();
}

void HostSession::Execute(const std::string& command) { Link().HostExecute(command); }

// Emptying the link first means the probe finds no host, so it can't refuse one.
void HostSession::Disconnect() {
  Link().Clear();
  ProbeVersion();
}

void HostSession::ExitHost() {
  HoldBack([&] { CallMember(Link().object(), "Exit"); });
  HoldBack([&] { ProbeVersion(); });
}

int16_t HostSession::version() {
  ProbeVersion();
  return HostVersion;
}

VariantBool HostSession::Connected() {
  ProbeVersion();
  return ConnectedFlag;
}

VariantBool HostSession::Busy() {
  VariantBool busy = VariantBool::kFalse;
  return HoldBack([&] { busy = GetMember(Link().object(), "Busy").ToBool(); })
             ? busy
             : VariantBool::kFalse;
}

int32_t HostSession::WindowState() {
  if (!HoldBack(
          [&] { CachedWindowState = GetMember(Link().object(), "WindowState").ToInteger(); })) {
    CachedWindowState = 0;
  }
  return CachedWindowState;
}

// Only the four WindowStateType values act; the cache takes the new state before the host is
// asked, and keeps it when the host fails.
void HostSession::SetWindowState(int32_t NewState) {
  if (NewState != 8 && NewState != 2 && NewState != 4 && NewState != 1) return;
  CachedWindowState = static_cast<int16_t>(NewState);
  HoldBack([&] { SetMember(Link().object(), "WindowState", Variant(CachedWindowState)); });
}

// A failed read leaves the last value held.
VariantBool HostSession::Visible() {
  HoldBack([&] { CachedVisible = GetMember(Link().object(), "Visible").ToBool(); });
  return CachedVisible;
}

// Errors are not held back: a host that doesn't answer fails the member and the cache stays.
// Each test reads the host before it looks at `yesno`, so the host is read once when it is to be
// shown and is hidden, twice otherwise, and written only when it differs.
void HostSession::SetVisible(VariantBool yesno) {
  const AutomationObject& host = Link().object();
  const bool hidden = GetMember(host, "Visible").ToBool() == VariantBool::kFalse;
  if (yesno == VariantBool::kTrue && hidden) {
    SetMember(host, "Visible", Variant(VariantBool::kTrue));
  } else if (GetMember(host, "Visible").ToBool() == VariantBool::kTrue &&
             yesno == VariantBool::kFalse) {
    SetMember(host, "Visible", Variant(VariantBool::kFalse));
  }
  CachedVisible = yesno;
}

void HostSession::SendSwitch(VariantBool onoff, std::initializer_list<const char*> on,
                             std::initializer_list<const char*> off) {
  if (onoff != VariantBool::kTrue && onoff != VariantBool::kFalse) return;
  for (const char* command : onoff == VariantBool::kTrue ? on : off) Link().HostExecute(command);
}

void HostSession::Initialize() {
  ConnectedFlag = VariantBool::kFalse;
  HostVersion = 0;
}

void HostSession::Terminate() { Disconnect(); }

}  // namespace qorvel
