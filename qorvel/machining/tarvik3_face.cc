#include "qorvel/machining/tarvik3_face.h"

#include "qorvel/frame/host_session_rows.h"

namespace qorvel {

template <>
const BindingTable<Tarvik3>& BindingsOf<Tarvik3>() {
  using R = Rows<Tarvik3>;
  using T = Tarvik3;
  static const BindingTable<Tarvik3> table(
      "Tarvik3", {HostSessionRows<Tarvik3>(),
                  {R::Method<&T::Connect>("Connect"), R::Method<&T::ExecuteEx>("ExecuteEx"),
                   R::Method<&T::ExitTarvik>("ExitTarvik"), R::Put<&T::SetDialogs>("Dialogs"),
                   R::Get<&T::Dialogs>("Dialogs")},
                  {R::Method<&T::StoreBlock>("StoreBlock"), R::Method<&T::StoreModel>("StoreModel"),
                   R::Method<&T::ResizeBlock>("ResizeBlock"), R::Method<&T::SetBlock>("SetBlock"),
                   R::Method<&T::DefineTool>("DefineTool"), R::Get<&T::BlockSize>("BlockSize"),
                   R::Get<&T::ModelSize>("ModelSize"), R::Put<&T::SetUnits>("Units"),
                   R::Get<&T::Units>("Units"), R::Get<&T::IsModelLoaded>("IsModelLoaded"),
                   R::Get<&T::BlockDefined>("BlockDefined")},
                  {R::Method<&T::GetToolpathList>("GetToolpathList"),
                   R::Method<&T::GetPatternList>("GetPatternList"),
                   R::Method<&T::GetWorkplaneList>("GetWorkplaneList"),
                   R::Method<&T::SizeToolpath>("SizeToolpath")}});
  return table;
}

}  // namespace qorvel
