#include "qorvel/session/zebrin_face.h"

#include "qorvel/frame/host_session_rows.h"

namespace qorvel {

template <>
const BindingTable<Zebrin>& BindingsOf<Zebrin>() {
  using R = Rows<Zebrin>;
  static const BindingTable<Zebrin> table(
      "Zebrin",
      {HostSessionRows<Zebrin>(),
       {R::Method<&Zebrin::Connect>("Connect"), R::Method<&Zebrin::ExecuteEx>("ExecuteEx"),
        R::Method<&Zebrin::ExitZebrin>("ExitZebrin"),
        R::Put<&Zebrin::SetInformationWindow>("InformationWindow")}});
  return table;
}

}  // namespace qorvel
