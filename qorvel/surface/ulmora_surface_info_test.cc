#include "qorvel/surface/ulmora_surface_info.h"

#include <gtest/gtest.h>

#include <thread>

#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/surface/ulmora_surface_info_face.h"

namespace qorvel {
namespace {

using hosts::PlaneGrid;
using hosts::SimUlmora;
using surface_info_module::Store;

// Each call the host family received, as "member first-argument", the document's named.
std::vector<std::string> Trace(const SimUlmora& host) {
  std::vector<std::string> trace;
  for (const hosts::Call& c : host.log()) {
    std::string line = (c.object.empty() ? "" : c.object + ".") + c.member;
    if (!c.args.empty() && c.args[0].type() == VarType::kText) line += " " + c.args[0].ToText();
    trace.push_back(line);
  }
  return trace;
}

class UlmoraSurfaceInfoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    host_->AddSurface("Patch", PlaneGrid({0, 0, 0}, {30, 0, 0}, {0, 20, 0}, 4, 3));
    Call(info_, "Reset");
  }
  // A grid number member: GetPoint, SetPoint, a vector member.
  std::vector<double> Run(const char* member, int32_t lat, int32_t lon,
                          std::vector<double> values = {0, 0, 0}) {
    std::vector<Variant> args{Variant::Ref(lat), Variant::Ref(lon)};
    for (double& v : values) args.push_back(Variant::Ref(v));
    CallMember(info_, member, args);
    return values;
  }
  VariantBool GetSurface(std::string name) {
    std::vector<Variant> args{Variant::Ref(name)};
    return CallMember(info_, "GetSurface", args).ToBool();
  }
  std::vector<Message> Boxes() { return env_.env().messages().shown(); }

  ScopedEnv env_;
  std::shared_ptr<SimUlmora> host_ = hosts::RunUlmora();
  AutomationObject info_ = NewControl<UlmoraSurfaceInfo>();
};

TEST_F(UlmoraSurfaceInfoTest, ASurfaceCrossesInOneCallEachWay) {
  host_->ClearLog();
  EXPECT_EQ(GetSurface("Patch"), VariantBool::kTrue);
  EXPECT_EQ(Trace(*host_), (std::vector<std::string>{
                               "Evaluate SURFACE['Patch'].EXISTS", "Evaluate SURFACE['Patch'].TYPE",
                               "activedocument", "Evaluate SURFACE['Patch'].NLATS",
                               "Evaluate SURFACE['Patch'].NLONS", "Execute SELECT CLEARLIST",
                               "ActiveDocument.GetSurfacePointData Patch"}));
  EXPECT_EQ(GetMember(info_, "NumLats").ToLong(), 4);
  EXPECT_EQ(GetMember(info_, "NumLongs").ToLong(), 3);
  EXPECT_EQ(Run("GetPoint", 2, 3), (std::vector<double>{10, 20, 0}));

  host_->ClearLog();
  Run("SetPoint", 2, 3, {10, 20, 5});
  Run("SetTVECAfter", 2, 3, {0, 1, 0, 12});
  EXPECT_EQ(Run("GetPoint", 2, 3), (std::vector<double>{10, 20, 5}));  // no host call
  EXPECT_TRUE(host_->log().empty());
  EXPECT_EQ(Call(info_, "UpdateSurface").ToBool(), VariantBool::kTrue);
  EXPECT_EQ(Trace(*host_), (std::vector<std::string>{"Evaluate SURFACE['Patch'].EXISTS",
                                                     "Evaluate SURFACE['Patch'].TYPE",
                                                     "activedocument", "Execute SELECT CLEARLIST",
                                                     "ActiveDocument.SetSurfacePointData Patch"}));
  // The host holds the edit: its nearest point to where the grid point went is that point.
  const hosts::Vec3 moved = host_->NearestPoints("Patch", {{10, 20, 9}})[0];
  EXPECT_NEAR(moved.z, 5, 1e-9);
  // What the client reads back after a new read is the host's, the edit included.
  Run("SetPoint", 2, 3, {0, 0, 0});
  GetSurface("Patch");
  EXPECT_EQ(Run("GetPoint", 2, 3), (std::vector<double>{10, 20, 5}));
  EXPECT_EQ(Run("GetTVECAfter", 2, 3, {0, 0, 0, 0}), (std::vector<double>{0, 1, 0, 12}));
}

// The 24 arguments as the host sees them: the host checks every VARIANT type and refuses a
// wrong one, so a call that passes has them right; the world flag goes with every data call.
TEST_F(UlmoraSurfaceInfoTest, TheWorldFlagGoesWithEveryDataCallAndSurvivesReset) {
  VariantBool world = VariantBool::kTrue;
  SetMember(info_, "world", Variant::Ref(world));
  Call(info_, "Reset");
  host_->ClearLog();
  GetSurface("Patch");
  Call(info_, "UpdateSurface");
  int data_calls = 0;
  for (const hosts::Call& c : host_->log()) {
    if (c.object.empty()) continue;
    ASSERT_EQ(c.args.size(), 24u);
    EXPECT_EQ(c.args[5].ToBool(), VariantBool::kTrue);
    EXPECT_EQ(c.args[1].vt(), 2);
    EXPECT_EQ(c.args[3].ToInteger(), 1);
    ++data_calls;
  }
  EXPECT_EQ(data_calls, 2);
  EXPECT_EQ(GetMember(info_, "world").ToBool(), VariantBool::kTrue);
}

TEST_F(UlmoraSurfaceInfoTest, NumberedErrorsInTheOrderOfTheChecks) {
  host_->AddSurface("Flat", PlaneGrid({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 2, 2), "Plane");
  host_->AddSurface("Lower", PlaneGrid({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 2, 2), "KALVANE");
  const std::string missing = "The surface does not exist\r\nin the current Ulmora session";
  struct Case {
    std::function<void()> call;
    int32_t number;
    std::string text;
  };
  const Case cases[] = {
      {[&] { GetSurface("Nope"); }, 60001, missing},
      {[&] { GetSurface("Flat"); }, 60002, "The surface is not a KalVane"},
      {[&] { Run("GetPoint", 1, 1); }, 60000, "No surface selected"},  // a failed read forgets
      {[&] { GetSurface("Lower"), Run("GetPoint", 0, 9); }, 60004, "Lateral number out of range"},
      {[&] { Run("GetPoint", 3, 1); }, 60004, "Lateral number out of range"},
      {[&] {
         Run("GetUVECBefore", 2, 3, {0, 0, 0, 0});
       },
       60005, "Longitudinal number out of range"},
      {[&] {
         std::vector<Variant> at{int32_t{1}, int32_t{0}};
         GetMember(info_, "UDIRAfter_Free", at);
       },
       60005, "Longitudinal number out of range"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ErrorOf(c.call), c.number) << c.text;
    try {
      c.call();
    } catch (const Error& e) {
      EXPECT_EQ(e.description(), c.text);
    }
  }
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(UlmoraSurfaceInfoTest, ResetAndItsGate) {
  GetSurface("Patch");
  auto gone = host_;
  gone->GoAway();
  Call(info_, "Reset");  // no host: nothing changes
  EXPECT_EQ(GetMember(info_, "Active").ToBool(), VariantBool::kTrue);
  EXPECT_EQ(GetMember(info_, "SurfaceName").ToText(), "Patch");

  for (const auto& [version, active] :
       std::vector<std::pair<Variant, VariantBool>>{{int32_t{2610}, VariantBool::kFalse},
                                                    {int32_t{2611}, VariantBool::kTrue},
                                                    {"no number", VariantBool::kFalse}}) {
    auto host = hosts::RunUlmora();
    host->set_version(version);
    Call(info_, "Reset");
    EXPECT_EQ(GetMember(info_, "Active").ToBool(), active) << version.ToText();
  }
  EXPECT_TRUE(Boxes().empty());
  EXPECT_EQ(ErrorOf([&] { GetSurface("Patch"); }), 60000);  // a host is bound, of no use
  EXPECT_EQ(GetMember(info_, "SurfaceName").ToText(), "");
}

// A host status other than 0: a box and false; a read leaves new empty arrays of the host's
// counts, a write leaves the store as it was.
TEST_F(UlmoraSurfaceInfoTest, AFailedStatusShowsABoxAndReturnsFalse) {
  GetSurface("Patch");
  Run("SetPoint", 1, 1, {7, 7, 7});
  host_->document()->FailDataCalls(5);
  EXPECT_EQ(Call(info_, "UpdateSurface").ToBool(), VariantBool::kFalse);
  EXPECT_EQ(Run("GetPoint", 1, 1), (std::vector<double>{7, 7, 7}));
  host_->ClearLog();
  EXPECT_EQ(GetSurface("Patch"), VariantBool::kFalse);
  EXPECT_EQ(Trace(*host_).at(5), "Execute SELECT CLEARLIST");  // cleared all the same
  EXPECT_EQ(GetMember(info_, "NumLats").ToLong(), 0);
  const SafeArray& points = Store().Points;
  EXPECT_EQ(points.bounds(), (std::vector<Bound>{{1, 4}, {1, 3}, {1, 3}}));
  EXPECT_EQ(points.Get({1, 1, 1}).ToDouble(), 0);
  ASSERT_EQ(Boxes().size(), 2u);
  EXPECT_EQ(Boxes()[0].text, "Unable to set surface data - unknown reason!");
  EXPECT_EQ(Boxes()[1].text, "Unable to retrieve surface information - unknown reason!");
  EXPECT_EQ(Boxes()[1].style, 4144);
  EXPECT_EQ(Boxes()[1].title, "");
  EXPECT_EQ(Call(info_, "UpdateSurface").ToBool(), VariantBool::kFalse);
  EXPECT_EQ(Boxes().back().text, "No surface retrieved to be updated");
}

TEST_F(UlmoraSurfaceInfoTest, CountsMustMakeAnArray) {
  for (const auto& [count, number] : std::vector<std::pair<Variant, int32_t>>{
           {int32_t{0}, 9}, {int32_t{40000}, 6}, {"many", 13}}) {
    host_->ScriptEvaluate("SURFACE['Patch'].NLONS", count);
    EXPECT_EQ(ErrorOf([&] { GetSurface("Patch"); }), number) << count.ToText();
    EXPECT_EQ(GetMember(info_, "SurfaceName").ToText(), "");
  }
}

// The store takes the host's arrays with the host's bounds; one that disagrees with the
// counts gives the subscript error, never a read outside it.
TEST_F(UlmoraSurfaceInfoTest, TheStoreTakesTheHostsBounds) {
  SafeArray points(VarType::kDouble, {{0, 4}, {1, 3}, {1, 3}});
  points.Put({0, 1, 1}, 42.0);
  host_->document()->ScriptArgument("GetSurfacePointData", 7, points);
  EXPECT_EQ(GetSurface("Patch"), VariantBool::kTrue);
  EXPECT_EQ(Store().Points.LBound(1), 0);
  EXPECT_EQ(Run("GetPoint", 3, 1), (std::vector<double>{0, 0, 0}));
  EXPECT_EQ(ErrorOf([&] { Run("GetPoint", 4, 1); }), 9);  // within the counts, not the array
  EXPECT_EQ(ErrorOf([&] { Run("GetUVECBefore", 4, 1, {0, 0, 0, 0}); }), 0);  // that one fits
}

TEST_F(UlmoraSurfaceInfoTest, OneStoreAThreadSharedByItsControls) {
  AutomationObject second = NewControl<UlmoraSurfaceInfo>();
  Call(second, "Reset");  // a bind forgets the counts of the thread, so it comes first
  GetSurface("Patch");
  EXPECT_EQ(GetMember(second, "NumLats").ToLong(), 4);  // read by the first
  int16_t lats = -1;
  std::thread([&] { lats = Store().NLats; }).join();
  EXPECT_EQ(lats, 0);  // another thread's store is its own
}

}  // namespace
}  // namespace qorvel
