#include "qorvel/machining/tarvik3.h"

#include "qorvel/frame/session_members.h"
#include "qorvel/machining/tarvik_stuff.h"
#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/error.h"

namespace qorvel {

using tarvik_stuff::Link;

namespace {
constexpr int32_t kOldestAccepted = 2522;
}

void Tarvik3::ProbeVersion() {
  HostVersion = Variant(tarvik_stuff::FetchHostVersion()).ToInteger();
  if (HostVersion == 0) {
    ConnectedFlag = VariantBool::kFalse;
    BlockStored = VariantBool::kFalse;
    return;
  }
  if (HostVersion < kOldestAccepted) {
    HostVersion = 0;
    ConnectedFlag = VariantBool::kFalse;
    BlockStored = VariantBool::kFalse;
    Raise(kOldTarvikError, kOldTarvikText);
  }
  ConnectedFlag = VariantBool::kTrue;
}

void Tarvik3::Connect(int32_t connection_status) {
  if (ConnectedFlag != VariantBool::kTrue) {
    if (connection_status == 1) {
      Link().StartAndConnect();
    } else if (connection_status == 0) {
      Link().ConnectToRunning();
    } else if (connection_status == 2 && Link().ConnectNew() == VariantBool::kTrue) {
      // A new host is refused at once, and let go of before the error is raised.
      if (GetMember(Link().object(), "version").ToLong() < kOldestAccepted) {
        Link().Clear();
        Raise(kOldTarvikError, kOldTarvikText);
      }
    }
  }
  ProbeVersion();
}

void Tarvik3::Execute(const std::string& command) { Link().HostExecute(command); }

std::string Tarvik3::ExecuteEx(const std::string& command) { return Link().HostExecuteEx(command); }

void Tarvik3::Disconnect() {
  Link().Clear();
  ProbeVersion();
}

void Tarvik3::ExitTarvik() {
  HoldBack([&] { CallMember(Link().object(), "Exit"); });
  HoldBack([&] { ProbeVersion(); });
}

int16_t Tarvik3::version() {
  ProbeVersion();
  return HostVersion;
}

VariantBool Tarvik3::Connected() {
  ProbeVersion();
  return ConnectedFlag;
}

VariantBool Tarvik3::Busy() { return session_members::ReadBusy(Link()); }

int32_t Tarvik3::WindowState() {
  return session_members::ReadWindowState(Link(), CachedWindowState);
}

void Tarvik3::SetWindowState(int32_t new_state) {
  session_members::WriteWindowState(Link(), CachedWindowState, new_state);
}

VariantBool Tarvik3::Dialogs() {
  const std::string reply =
      Link().HostExecuteEx("print formvalue roughmenubar.view.dialogs.message");
  return ToVariantBool(reply.find("TRUE") != std::string::npos);
}

void Tarvik3::SetDialogs(VariantBool onoff) {
  if (onoff == VariantBool::kTrue) {
    Link().HostExecute("DIALOGS MESSAGE ON");
    Link().HostExecute("DIALOGS ERROR ON");
  } else if (onoff == VariantBool::kFalse) {
    Link().HostExecute("DIALOGS MESSAGE OFF");
    Link().HostExecute("DIALOGS ERROR OFF");
  }
}

VariantBool Tarvik3::Visible() { return session_members::ReadVisible(Link(), CachedVisible); }

// Runs only while connected; then, with no errors held back, as Zebrin's.
void Tarvik3::SetVisible(VariantBool yesno) {
  if (ConnectedFlag != VariantBool::kTrue) return;
  session_members::WriteVisible(Link(), CachedVisible, yesno);
}

VariantBool Tarvik3::IsModelLoaded() { return tarvik_stuff::ModelLoadedProbe(); }

void Tarvik3::Initialize() {
  ConnectedFlag = VariantBool::kFalse;
  HostVersion = 0;
  BlockStored = VariantBool::kFalse;
  ModelStored = VariantBool::kFalse;
}

void Tarvik3::Terminate() { Disconnect(); }

}  // namespace qorvel
