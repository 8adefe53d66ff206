#include "qorvel/surface/ulmora_nearest_points.h"

#include <gtest/gtest.h>

#include <cmath>

#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/surface/ulmora_nearest_points_face.h"

namespace qorvel {
namespace {

using hosts::SimUlmora;

SafeArray Doubles(int32_t lower, std::vector<double> values) {
  SafeArray a(VarType::kDouble, {{lower, int32_t(values.size())}});
  for (size_t i = 0; i < values.size(); ++i) a.PutDouble(lower + int32_t(i), values[i]);
  return a;
}

std::vector<double> Values(const SafeArray& a) {
  std::vector<double> values;
  for (int32_t i = a.LBound(); i <= a.UBound(); ++i) values.push_back(a.GetDouble(i));
  return values;
}

class UlmoraNearestPointsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    host_->AddSurface("Floor", hosts::PlaneGrid({-10, -10, 0}, {20, 0, 0}, {0, 20, 0}, 3, 3));
    host_->AddSurface("Drum", hosts::CylinderGrid({.origin = {0, 0, 0},
                                                   .axis = {0, 0, 1},
                                                   .reference = {1, 0, 0},
                                                   .radius = 5,
                                                   .start_angle = 0,
                                                   .angle = 2 * M_PI,
                                                   .length = 10,
                                                   .nlats = 33,
                                                   .nlons = 3}));
  }
  // Projects the points of x, y and z; the outputs come back in out.
  int32_t Project(std::string name, SafeArray x, SafeArray y, SafeArray z) {
    std::vector<Variant> args{Variant::Ref(name),  Variant::Ref(x),      Variant::Ref(y),
                              Variant::Ref(z),     Variant::Ref(out[0]), Variant::Ref(out[1]),
                              Variant::Ref(out[2])};
    return ErrorOf([&] { CallMember(control_, "GetNearestPoints", args); });
  }

  ScopedEnv env_;
  std::shared_ptr<SimUlmora> host_ = hosts::RunUlmora();
  AutomationObject control_ = NewControl<UlmoraNearestPoints>();
  SafeArray out[3] = {Doubles(0, {9}), Doubles(0, {9}), Doubles(0, {9})};
};

// The checks come in order, and the outputs change only from the resize on.
TEST_F(UlmoraNearestPointsTest, ChecksComeInOrderAndTheOutputsAreResizedFirst) {
  const SafeArray p = Doubles(1, {1, 2});
  struct Case {
    SafeArray x, y, z;
    int32_t error;
    bool resized;
  };
  const Case cases[] = {
      {p, Doubles(0, {1, 2}), Doubles(-1, {1, 2}), 60009, false},
      {Doubles(-1, {1, 2}), Doubles(-1, {1, 2}), Doubles(-1, {1, 2}), 60006, false},
      {Doubles(1, {}), Doubles(1, {}), Doubles(1, {}), 9, false},  // 1 to 0: at the resize
      {SafeArray(), p, p, 9, false},                               // no dimensions
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Project("Floor", c.x, c.y, c.z), c.error);
    EXPECT_EQ(Values(out[0]), std::vector<double>{9});
  }
  host_->ClearLog();
  host_->ScriptEvaluate("SURFACE['Gone'].EXISTS", false);
  EXPECT_EQ(Project("", p, p, p), 60002);
  EXPECT_EQ(Project("Gone", p, p, p), 60004);
  EXPECT_EQ(Values(out[0]), (std::vector<double>{0, 0}));  // resized to 1..2, zeroed
  EXPECT_EQ(out[1].LBound(), 1);
  out[2] = SafeArray(VarType::kVariant, {{0, 1}});  // Variant elements hold 0.0 too, not Empty
  EXPECT_EQ(Project("Gone", p, p, p), 60004);
  EXPECT_EQ(out[2].Get({2}).vt(), 5);
  out[2] = Doubles(0, {9});
  host_->CloseModel();
  EXPECT_EQ(Project("Floor", p, p, p), 60003);
  host_->GoAway();
  EXPECT_EQ(Project("Floor", p, p, p), 462);  // the dead reference answers for itself
  EXPECT_EQ(Values(out[2]), (std::vector<double>{0, 0}));
}

TEST_F(UlmoraNearestPointsTest, NoHostIsNotConnectedWhateverTheName) {
  host_->GoAway();
  AutomationObject fresh = NewControl<UlmoraNearestPoints>();
  std::swap(fresh, control_);
  EXPECT_EQ(Project("", Doubles(0, {1}), Doubles(0, {1}), Doubles(0, {1})), 60001);
  auto restarted = hosts::RunUlmora();
  restarted->set_version(2000);  // any version above 0 passes
  restarted->AddSurface("Floor", hosts::PlaneGrid({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 2, 2));
  EXPECT_EQ(Project("Floor", Doubles(0, {0.5}), Doubles(0, {0.5}), Doubles(0, {3})), 0);
  restarted->set_version(0);
  EXPECT_EQ(Project("Floor", Doubles(0, {0.5}), Doubles(0, {0.5}), Doubles(0, {3})), 60001);
}

// All points go in one call: the name and the count by reference, two copies of the points.
TEST_F(UlmoraNearestPointsTest, OneCallCarriesAllPoints) {
  host_->ClearLog();
  EXPECT_EQ(Project("Floor", Doubles(1, {1, 2}), Doubles(1, {3, 4}), Doubles(1, {5, 6})), 0);
  const hosts::Call call = host_->log().back();
  ASSERT_EQ(call.member, "getnearestpoint");
  EXPECT_EQ(call.args[0].ToText(), "Floor");
  EXPECT_EQ(call.args[1].ToLong(), 2);
  EXPECT_EQ(Values(call.args[2].ToArray()), (std::vector<double>{1, 3, 5, 2, 4, 6, 0}));
  // Read from elements 3 to 5 for index 2: points off a plane drop straight onto it.
  for (int32_t i : {1, 2}) {
    EXPECT_NEAR(out[0].GetDouble(i), i, 1e-9);
    EXPECT_NEAR(out[1].GetDouble(i), i + 2, 1e-9);
    EXPECT_NEAR(out[2].GetDouble(i), 0, 1e-9);
  }

  EXPECT_EQ(Project("Floor", Doubles(0, {7}), Doubles(0, {8}), Doubles(0, {0})), 0);
  EXPECT_EQ(host_->log().back().args[2].ToArray().size(), 4);  // 3N + 1
}

// An answer that comes back short, or with an element that isn't a number, fails at the first
// element concerned: the outputs keep what came before it and 0 after.
TEST_F(UlmoraNearestPointsTest, AnOddAnswerFailsAtTheFirstElementConcerned) {
  SafeArray mixed(VarType::kVariant, {{0, 7}});
  mixed.Put({0}, 1.5);
  mixed.Put({1}, int32_t{2});
  mixed.Put({2}, 3.5);
  mixed.Put({3}, Variant::Null());
  struct Case {
    Variant answer;
    int32_t error;
    std::vector<double> x, y, z;
  } cases[] = {
      {Doubles(0, {7, 8, 9, 10}), 9, {7, 10}, {8, 0}, {9, 0}},
      {mixed, 94, {1.5, 0}, {2, 0}, {3.5, 0}},
      {Variant("no array"), 13, {0, 0}, {0, 0}, {0, 0}},
  };
  for (const Case& c : cases) {
    host_->document()->ClearFaults();
    host_->document()->ScriptArgument("getnearestpoint", 4, c.answer);
    EXPECT_EQ(Project("Floor", Doubles(1, {1, 2}), Doubles(1, {1, 2}), Doubles(1, {0, 0})),
              c.error);
    EXPECT_EQ(Values(out[0]), c.x);
    EXPECT_EQ(Values(out[1]), c.y);
    EXPECT_EQ(Values(out[2]), c.z);
  }
}

TEST_F(UlmoraNearestPointsTest, ProjectionsFollowTheGeometry) {
  // Off a cylinder: radially onto it; on it: to itself.
  EXPECT_EQ(Project("Drum", Doubles(0, {9, 0, 3}), Doubles(0, {0, 2, 4}), Doubles(0, {4, 7, 5})),
            0);
  const double r0 = std::hypot(out[0].GetDouble(0), out[1].GetDouble(0));
  EXPECT_NEAR(r0, 5, 1e-6);
  EXPECT_NEAR(out[1].GetDouble(0), 0, 1e-6);
  EXPECT_NEAR(out[0].GetDouble(1) / out[1].GetDouble(1), 0, 1e-3);  // (0, 2) goes to (0, 5)
  EXPECT_NEAR(out[0].GetDouble(2), 3, 1e-6);
  EXPECT_NEAR(out[1].GetDouble(2), 4, 1e-6);
  EXPECT_NEAR(out[2].GetDouble(2), 5, 1e-9);
  // A host that leaves the answer as it came gives the inputs back.
  host_->document()->set_echo_nearest(true);
  EXPECT_EQ(Project("Drum", Doubles(0, {9}), Doubles(0, {1}), Doubles(0, {2})), 0);
  EXPECT_EQ(Values(out[0]), std::vector<double>{9});
}

}  // namespace
}  // namespace qorvel
