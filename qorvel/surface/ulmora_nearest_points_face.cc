#include "qorvel/surface/ulmora_nearest_points_face.h"

namespace qorvel {

template <>
const BindingTable<UlmoraNearestPoints>& BindingsOf<UlmoraNearestPoints>() {
  using N = UlmoraNearestPoints;
  static const BindingTable<UlmoraNearestPoints> table(
      "UlmoraNearestPoints", {{Rows<N>::Method<&N::GetNearestPoints>("GetNearestPoints")}});
  return table;
}

}  // namespace qorvel
