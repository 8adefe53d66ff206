#include "qorvel/frame/session_members.h"

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/dispatch.h"

namespace qorvel::session_members {

VariantBool ReadBusy(const HostLink& link) {
  VariantBool busy = VariantBool::kFalse;
  ClearAutomationError();
  HoldBack([&] { busy = GetMember(link.object(), "Busy").ToBool(); });
  return AutomationError() != 0 ? VariantBool::kFalse : busy;
}

int32_t ReadWindowState(const HostLink& link, int16_t& cached) {
  ClearAutomationError();
  HoldBack([&] { cached = GetMember(link.object(), "WindowState").ToInteger(); });
  if (AutomationError() != 0) cached = 0;
  return cached;
}

void WriteWindowState(const HostLink& link, int16_t& cached, int32_t new_state) {
  if (new_state != 8 && new_state != 2 && new_state != 4 && new_state != 1) return;
  cached = static_cast<int16_t>(new_state);
  ClearAutomationError();
  HoldBack([&] { SetMember(link.object(), "WindowState", Variant(cached)); });
}

VariantBool ReadVisible(const HostLink& link, VariantBool& cached) {
  HoldBack([&] { cached = GetMember(link.object(), "Visible").ToBool(); });
  return cached;
}

// Both tests read the host, the second only when the first fails: a value other than -1 and 0
// reads it twice and writes nothing.
void WriteVisible(const HostLink& link, VariantBool& cached, VariantBool yesno) {
  const AutomationObject& host = link.object();
  const bool hidden = GetMember(host, "Visible").ToBool() == VariantBool::kFalse;
  if (yesno == VariantBool::kTrue && hidden) {
    SetMember(host, "Visible", Variant(VariantBool::kTrue));
  } else if (GetMember(host, "Visible").ToBool() == VariantBool::kTrue &&
             yesno == VariantBool::kFalse) {
    SetMember(host, "Visible", Variant(VariantBool::kFalse));
  }
  cached = yesno;
}

}  // namespace qorvel::session_members
