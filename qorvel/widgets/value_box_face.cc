#include "qorvel/widgets/value_box_face.h"

namespace qorvel {

// The put of value is set_value in C++, since SetValue is the published name of the silent
// write.
template <>
const BindingTable<ValueBox>& BindingsOf<ValueBox>() {
  using R = Rows<ValueBox>;
  using V = ValueBox;
  static const BindingTable<ValueBox> table(
      "ValueBox",
      {{R::Get<&V::value>("value"), R::Put<&V::SetValue>("SetValue"),
        R::Put<&V::set_value>("value"), R::Get<&V::TextValue>("TextValue")},
       {R::Get<&V::DecimalPlaces>("DecimalPlaces"), R::Put<&V::SetDecimalPlaces>("DecimalPlaces"),
        R::Get<&V::Readonly>("Readonly"), R::Put<&V::SetReadonly>("Readonly")}});
  return table;
}

}  // namespace qorvel
