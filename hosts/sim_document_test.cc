#include "hosts/sim_document.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"

namespace qorvel::hosts {
namespace {

// The data calls take every argument only in its declared VARIANT type: a client that passes
// one otherwise is told which.
TEST(SimDocumentTest, TheDataCallsCheckEveryArgumentsType) {
  ScopedEnv env;
  auto host = RunUlmora();
  host->AddSurface("Patch", PlaneGrid({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 2, 2));
  std::string name = "Patch";
  int16_t lats = 0, lons = 0;
  VariantBool world = VariantBool::kFalse;
  int32_t status = -1;
  std::vector<Variant> arrays(17, Variant(SafeArray(VarType::kDouble, {{1, 1}})));
  for (int i : {3, 4, 7, 8, 11, 12, 15, 16}) arrays[i] = SafeArray(VarType::kBool, {{1, 1}});
  auto args = [&] {
    std::vector<Variant> a{Variant::Ref(name), int16_t{1},         Variant::Ref(lats),
                           int16_t{1},         Variant::Ref(lons), Variant::Ref(world)};
    for (Variant& v : arrays) a.push_back(Variant::Ref(v));
    a.push_back(Variant::Ref(status));
    return a;
  };
  std::vector<Variant> good = args();
  CallMember(host->document(), "GetSurfacePointData", good);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(lats, 2);
  EXPECT_EQ(arrays[0].ToArray().bounds(), (std::vector<Bound>{{1, 2}, {1, 2}, {1, 3}}));

  const std::pair<size_t, Variant> wrong[] = {{0, Variant("Patch")},
                                              {1, Variant(int32_t{1})},
                                              {2, Variant(int16_t{2})},
                                              {5, Variant(true)},
                                              {6, Variant(SafeArray(VarType::kDouble, {{1, 1}}))},
                                              {23, Variant(int16_t{0})}};
  for (const auto& [at, value] : wrong) {
    std::vector<Variant> bad = args();
    bad[at] = value;
    try {
      CallMember(host->document(), "SetSurfacePointData", bad);
      ADD_FAILURE() << "argument " << at + 1 << " taken";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), 13);
      EXPECT_NE(e.description().find("argument " + std::to_string(at + 1)), std::string::npos)
          << e.description();
    }
  }
  arrays[11] = SafeArray(VarType::kDouble, {{1, 1}});  // a flag array of Doubles
  std::vector<Variant> flags = args();
  EXPECT_THROW(CallMember(host->document(), "GetSurfacePointData", flags), Error);
}

}  // namespace
}  // namespace qorvel::hosts
