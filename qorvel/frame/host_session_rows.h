#ifndef QORVEL_FRAME_HOST_SESSION_ROWS_H_
#define QORVEL_FRAME_HOST_SESSION_ROWS_H_

#include <vector>

#include "qorvel/frame/binding.h"
#include "qorvel/frame/host_session.h"

namespace qorvel {

// The rows that all three host controls have alike, bound to the session family. Each control
// adds the rows that differ: its Connect, ExecuteEx where it has one, its exit member, its
// switches and its own members.
template <class C>
std::vector<Binding<C>> HostSessionRows() {
  using R = Rows<C>;
  return {R::template Method<&C::Execute>("Execute"),
          R::template Method<&C::Disconnect>("Disconnect"),
          R::template Get<&C::version>("version"),
          R::template Get<&C::Connected>("Connected"),
          R::template Get<&C::Busy>("Busy"),
          R::template Get<&C::WindowState>("WindowState"),
          R::template Put<&C::SetWindowState>("WindowState"),
          R::template Get<&C::Visible>("Visible"),
          R::template Put<&C::SetVisible>("Visible")};
}

}  // namespace qorvel

#endif  // QORVEL_FRAME_HOST_SESSION_ROWS_H_
