#include "hosts/sim_object.h"

#include <gtest/gtest.h>

#include <tuple>

#include "hosts/simulators.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel::hosts {
namespace {

// An object of a host, as a document is: a property that can be written and a method.
class SimPart : public SimObject {
 public:
  explicit SimPart(const std::shared_ptr<SimObject>& host)
      : SimObject("Zebrin.Part", host, "Part") {}

 protected:
  const SimMembers& members() const override {
    static const SimMembers members{
        {"Size", MemberShape::kProperty, Handle<&SimPart::GetSize>, Handle<&SimPart::PutSize>},
        {"Grow", MemberShape::kMethod, Handle<&SimPart::Grow>}};
    return members;
  }

 private:
  Variant GetSize(std::span<Variant>) { return size_; }
  void PutSize(std::span<Variant> args) { size_ = args[0].ToLong(); }
  void Grow(std::span<Variant>) { ++size_; }

  int32_t size_ = 3;
};

class SimObjectTest : public ::testing::Test {
 protected:
  void SetUp() override {
    host_ = RunZebrin();
    part_ = std::make_shared<SimPart>(host_);
  }
  // The host's log as "object.member" for each call.
  std::vector<std::string> Seen() const {
    std::vector<std::string> seen;
    for (const Call& c : host_->log()) {
      seen.push_back(c.object.empty() ? c.member : c.object + "." + c.member);
    }
    return seen;
  }

  ScopedEnv env_;
  std::shared_ptr<SimZebrin> host_;
  std::shared_ptr<SimPart> part_;
};

// What a caller learns of a member before calling it comes from the table the call runs on.
TEST_F(SimObjectTest, ShapesAndCallsComeFromOneTable) {
  const std::shared_ptr<SimUlmora> ulmora = RunUlmora();
  const std::tuple<const Dispatch*, const char*, MemberShape> shapes[] = {
      {part_.get(), "size", MemberShape::kProperty},
      {part_.get(), "GROW", MemberShape::kMethod},
      {host_.get(), "ExecuteEx", MemberShape::kMethod},
      {ulmora.get(), "exec", MemberShape::kMethod},
      {ulmora.get(), "ExecuteEx", MemberShape::kMissing}};
  for (const auto& [object, member, shape] : shapes) EXPECT_EQ(object->Shape(member), shape);

  CallMember(part_, "grow");
  SetMember(part_, "SIZE", 10);
  EXPECT_EQ(GetMember(part_, "Size").ToLong(), 10);
  EXPECT_EQ(ErrorOf([&] { SetMember(part_, "Grow", 1); }), err::kNoMember);
  EXPECT_EQ(ErrorOf([&] { SetMember(host_, "Busy", true); }), err::kNoMember);
}

// The host's log holds its object's calls in the order they came, named; its commands don't.
TEST_F(SimObjectTest, AnObjectsCallsAreInItsHostsLogNamed) {
  qorvel::Call(host_, "Execute", "ECHO a", 0);
  part_->FailMember("Size", 70, "Denied");
  EXPECT_EQ(ErrorOf([&] { GetMember(part_, "Size"); }), 70);
  EXPECT_EQ(ErrorOf([&] { qorvel::Call(part_, "Execute", "ECHO b", 0); }), err::kNoMember);
  EXPECT_EQ(Seen(), (std::vector<std::string>{"Execute", "Part.Size", "Part.Execute"}));
  EXPECT_EQ(host_->commands(), std::vector<std::string>{"ECHO a"});
  part_->ClearLog();
  EXPECT_TRUE(host_->log().empty());
}

TEST_F(SimObjectTest, AnObjectGoesWithItsHostAndAloneWithoutIt) {
  auto second = std::make_shared<SimPart>(host_);
  second->VanishAt(1);  // a document closed at its next call: the host stays
  EXPECT_EQ(ErrorOf([&] { GetMember(second, "Size"); }), err::kServerGone);
  EXPECT_EQ(GetMember(part_, "Size").ToLong(), 3);

  host_->GoAway();
  EXPECT_TRUE(part_->gone());
  EXPECT_EQ(ErrorOf([&] { GetMember(part_, "Size"); }), err::kServerGone);

  // A host that no longer exists takes its objects with it.
  auto lone = std::make_shared<SimTarvik>();
  auto orphan = std::make_shared<SimPart>(lone);
  lone.reset();
  EXPECT_EQ(ErrorOf([&] { GetMember(orphan, "Size"); }), err::kServerGone);
}

// The host vanishes at its n-th call whichever of its objects gets it, and leaves the table.
TEST_F(SimObjectTest, AHostsVanishingCountsItsObjectsCalls) {
  host_->VanishAt(3);
  GetMember(part_, "Size");
  GetMember(host_, "version");
  EXPECT_EQ(ErrorOf([&] { CallMember(part_, "Grow"); }), err::kServerGone);
  EXPECT_TRUE(host_->gone());
  EXPECT_EQ(ErrorOf([&] { Env::Current().running_objects().BindRunning(kZebrinClass); }),
            err::kCantCreate);
  EXPECT_EQ(Seen(), (std::vector<std::string>{"Part.Size", "version", "Part.Grow"}));
}

}  // namespace
}  // namespace qorvel::hosts
