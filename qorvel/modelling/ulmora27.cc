#include "qorvel/modelling/ulmora27.h"

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {
namespace {

constexpr int16_t kOldestAccepted = 2620;

}  // namespace

bool Ulmora27::Accepts(int16_t version) const { return version >= kOldestAccepted; }

// A message, not an error: every probe that meets such a host shows it again.
void Ulmora27::Refuse() {
  Env::Current().messages().ShowMessage("Control only supports Ulmora2620 onwards", kExclamationBox,
                                        "");
}

// There is no way to start the host: a control that isn't connected can only bind one that
// runs.
void Ulmora27::Connect() {
  if (ConnectedFlag == VariantBool::kFalse) Link().ConnectToRunning();
  ProbeVersion();
}

void Ulmora27::SetDialogs(VariantBool onoff) { SendSwitch(onoff, {"DIALOG ON"}, {"DIALOG OFF"}); }

Variant Ulmora27::Evaluate(std::string& ObjInfo) {
  Variant result;
  std::vector<Variant> args{Variant::Ref(ObjInfo)};
  if (!HoldBack([&] { result = CallMember(Link().object(), "Evaluate", args).Deref(); })) {
    result = Variant(std::string());
  }
  return result;
}

void Ulmora27::AddBatchCommand(std::string& NewCommand) {
  if (!BatchBuffer.empty()) BatchBuffer += "\r\n";
  BatchBuffer += NewCommand;
}

VariantBool Ulmora27::ProcessBatch() {
  std::vector<Variant> args{Variant::Ref(BatchBuffer)};
  const bool taken = HoldBack([&] { CallMember(Link().object(), "exec", args); });
  ClearBatchBuffer();
  return ToVariantBool(taken);
}

void Ulmora27::StoreData(const std::string& ObjectID) {
  std::string id = ObjectID;
  std::vector<Variant> args{Variant::Ref(id)};
  if (!HoldBack([&] { StoredValue = CallMember(Link().object(), "Print", args).Deref(); })) {
    StoredValue = Variant();
  }
}

}  // namespace qorvel
