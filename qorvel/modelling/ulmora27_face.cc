#include "qorvel/modelling/ulmora27_face.h"

#include "qorvel/frame/host_session_rows.h"

namespace qorvel {

// No ExecuteEx and no argument to Connect: the family's rows that this control has, then its
// own.
template <>
const BindingTable<Ulmora27>& BindingsOf<Ulmora27>() {
  using R = Rows<Ulmora27>;
  using U = Ulmora27;
  static const BindingTable<Ulmora27> table(
      "Ulmora27",
      {HostSessionRows<Ulmora27>(),
       {R::Method<&U::Connect>("Connect"), R::Method<&U::ExitUlmora>("ExitUlmora"),
        R::Put<&U::SetDialogs>("Dialogs")},
       {R::Method<&U::Evaluate>("Evaluate"), R::Method<&U::ClearBatchBuffer>("ClearBatchBuffer"),
        R::Method<&U::AddBatchCommand>("AddBatchCommand"),
        R::Method<&U::ProcessBatch>("ProcessBatch")},
       {R::Get<&U::ItemsSelectedCount>("ItemsSelectedCount"),
        R::Get<&U::ItemsCreatedCount>("ItemsCreatedCount"),
        R::Get<&U::ItemsModifiedCount>("ItemsModifiedCount"),
        R::Method<&U::GetFilteredSelection>("GetFilteredSelection"),
        R::Method<&U::GetSelectedEntities>("GetSelectedEntities"),
        R::Method<&U::GetCreatedEntities>("GetCreatedEntities"),
        R::Method<&U::GetModifiedEntities>("GetModifiedEntities")},
       {R::Method<&U::StoreData>("StoreData"), R::Get<&U::StoredData>("StoredData"),
        R::Get<&U::StoreType>("StoreType")}});
  return table;
}

}  // namespace qorvel
