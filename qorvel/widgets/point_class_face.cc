#include "qorvel/widgets/point_class_face.h"

namespace qorvel {

template <>
const BindingTable<PointClass>& BindingsOf<PointClass>() {
  using R = Rows<PointClass>;
  using P = PointClass;
  static const BindingTable<PointClass> table(
      "PointClass", {{R::Put<&P::SetX>("X"), R::Put<&P::SetY>("Y"), R::Put<&P::SetZ>("Z"),
                      R::Get<&P::X>("X"), R::Get<&P::Y>("Y"), R::Get<&P::Z>("Z")}});
  return table;
}

}  // namespace qorvel
