#ifndef QORVEL_FRAME_SESSION_MEMBERS_H_
#define QORVEL_FRAME_SESSION_MEMBERS_H_

#include <cstdint>

#include "qorvel/frame/host_link.h"
#include "qorvel/platform/variant.h"

namespace qorvel::session_members {

// The session members that every host control has alike, on the link they act on and the
// control's own cache.

// The host's busy flag; false when it doesn't answer.
VariantBool ReadBusy(const HostLink& link);
// The host's window state into `cached`; 0 when it doesn't answer.
int32_t ReadWindowState(const HostLink& link, int16_t& cached);
// Only the four WindowStateType values act: cached first, then written to the host as a 16-bit
// integer, a failure dropped.
void WriteWindowState(const HostLink& link, int16_t& cached, int32_t new_state);
// The host's visibility into `cached`; a failed read leaves the last value held.
VariantBool ReadVisible(const HostLink& link, VariantBool& cached);
// Writes the host only when it differs. Errors are not held back: a host that doesn't answer
// fails the member and `cached` stays.
void WriteVisible(const HostLink& link, VariantBool& cached, VariantBool yesno);

}  // namespace qorvel::session_members

#endif  // QORVEL_FRAME_SESSION_MEMBERS_H_
