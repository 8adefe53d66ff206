#include "qorvel/machining/tarvik3.h"

#include "qorvel/machining/tarvik_stuff.h"
#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/error.h"

namespace qorvel {

namespace {
constexpr int32_t kOldestAccepted = 2522;
}

int16_t Tarvik3::FetchVersion() { return Variant(tarvik_stuff::FetchHostVersion()).ToInteger(); }

bool Tarvik3::Accepts(int16_t version) const { return version >= kOldestAccepted; }

void Tarvik3::Refuse() { Raise(err::kOldTarvik); }

void Tarvik3::Dropped() { BlockStored = VariantBool::kFalse; }

void Tarvik3::Connect(int32_t& ConnectionStatus) {
  if (ConnectedFlag != VariantBool::kTrue) {
    if (ConnectionStatus == 1) {
      Link().StartAndConnect();
    } else if (ConnectionStatus == 0) {
      Link().ConnectToRunning();
    } else if (ConnectionStatus == 2 && Link().ConnectNew() == VariantBool::kTrue) {
      // A new host is refused at once, and let go of before the error is raised.
      if (GetMember(Link().object(), "version").ToLong() < kOldestAccepted) {
        Link().Clear();
        Raise(err::kOldTarvik);
      }
    }
  }
  ProbeVersion();
}

VariantBool Tarvik3::Dialogs() {
  const std::string reply =
      Link().HostExecuteEx("print formvalue roughmenubar.view.dialogs.message");
  return ToVariantBool(reply.find("TRUE") != std::string::npos);
}

void Tarvik3::SetDialogs(VariantBool onoff) {
  SendSwitch(onoff, {"DIALOGS MESSAGE ON", "DIALOGS ERROR ON"},
             {"DIALOGS MESSAGE OFF", "DIALOGS ERROR OFF"});
}

// A stale true flag lets the write through, and the failed read then reaches the client.
void Tarvik3::SetVisible(VariantBool yesno) {
  if (ConnectedFlag == VariantBool::kTrue) HostSession::SetVisible(yesno);
}

VariantBool Tarvik3::IsModelLoaded() { return tarvik_stuff::ModelLoadedProbe(); }

void Tarvik3::Initialize() {
  HostSession::Initialize();
  BlockStored = VariantBool::kFalse;
  ModelStored = VariantBool::kFalse;
}

}  // namespace qorvel
