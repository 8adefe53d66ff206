#include "qorvel/frame/dispatch_face.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/frame/registration.h"
#include "qorvel/machining/tarvik3_face.h"
#include "qorvel/platform/collection.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/session/zebrin_face.h"

namespace qorvel {
namespace {

class DispatchFaceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    HostLink::Of(Host::kZebrin).Clear();
    HostLink::Of(Host::kTarvik).Clear();
    zebrin_host_ = hosts::RunZebrin();
    tarvik_host_ = hosts::RunTarvik();
    zebrin_ = std::dynamic_pointer_cast<ClassObject>(NewZebrinObject());
    tarvik_ = std::dynamic_pointer_cast<ClassObject>(NewTarvik3Object());
  }
  void TearDown() override {
    zebrin_.reset();
    tarvik_.reset();
  }

  ScopedEnv env_;
  std::shared_ptr<hosts::SimZebrin> zebrin_host_;
  std::shared_ptr<hosts::SimTarvik> tarvik_host_;
  std::shared_ptr<ClassObject> zebrin_;
  std::shared_ptr<ClassObject> tarvik_;
};

TEST_F(DispatchFaceTest, ByNameWithoutCaseAndByDispid) {
  Call(zebrin_, "connect");
  EXPECT_EQ(GetMember(zebrin_, "VERSION").ToLong(), 2300);
  std::vector<Variant> none;
  EXPECT_EQ(zebrin_->InvokeId(0x68030005, CallKind::kPropertyGet, none).ToLong(), 2300);
  std::vector<Variant> state{Variant(int32_t{2})};
  zebrin_->InvokeId(0x68030002, CallKind::kPropertyPut, state);
  EXPECT_EQ(zebrin_host_->window_state, 2);
  EXPECT_EQ(zebrin_->Shape("Visible"), MemberShape::kProperty);
  EXPECT_EQ(zebrin_->Shape("execute"), MemberShape::kMethod);
  EXPECT_EQ(tarvik_->Shape("BlockSize"), MemberShape::kIndexedProperty);
  EXPECT_EQ(zebrin_->Shape("Nope"), MemberShape::kMissing);
}

TEST_F(DispatchFaceTest, ErrorNumbers) {
  EXPECT_EQ(ErrorOf([&] { Call(zebrin_, "Nope"); }), 438);
  EXPECT_EQ(ErrorOf([&] { GetMember(zebrin_, "InformationWindow"); }), 438);  // put only
  EXPECT_EQ(ErrorOf([&] { Call(zebrin_, "Execute"); }), 450);
  EXPECT_EQ(ErrorOf([&] { Call(zebrin_, "Execute", "a", "b"); }), 450);
  EXPECT_EQ(ErrorOf([&] { Call(tarvik_, "SetBlock", "x", 1.0); }), 13);
  EXPECT_EQ(ErrorOf([&] { Call(tarvik_, "SetBlock", 2.5e10, 1.0); }), 6);
}

TEST_F(DispatchFaceTest, OmittedOptionalsTakeTheirDefaults) {
  Call(tarvik_, "Connect");  // no default: arrives as 0, bind only
  EXPECT_EQ(GetMember(tarvik_, "Connected").ToBool(), VariantBool::kTrue);
  tarvik_host_->ClearLog();
  Call(tarvik_, "DefineTool", int32_t{6}, 8.0, Variant(), 1.5);
  std::vector<std::string> sent;
  for (const auto& c : tarvik_host_->commands()) sent.push_back(c);
  EXPECT_EQ(sent, (std::vector<std::string>{"EDIT DIAMETER 8.", "EDIT TOOLTYPE OFFCENTRETIPRAD",
                                            "EDIT TIPRADIUS 1.5", "EDIT TIPRADIUSX 0.",
                                            "EDIT TIPRADIUSY 0."}));
}

TEST_F(DispatchFaceTest, ByReferenceArgumentsAreWrittenBack) {
  Call(tarvik_, "Connect");
  tarvik_host_->AddToolpath("A", {1, 2, 3, 4, 5, 6});
  std::string name = "A";
  double v[6] = {};
  std::vector<Variant> args{Variant::Ref(name)};
  for (double& d : v) args.push_back(Variant::Ref(d));
  Variant plain_name("A");  // a by-value argument for a by-reference parameter stays as it is
  CallMember(tarvik_, "SizeToolpath", args);
  EXPECT_EQ(name, "\"A\"");
  EXPECT_EQ(std::vector<double>(v, v + 6), (std::vector<double>{1, 4, 2, 5, 3, 6}));
  std::vector<Variant> by_value{plain_name, 0, 0, 0, 0, 0, 0};
  CallMember(tarvik_, "SizeToolpath", by_value);
  EXPECT_EQ(by_value[0].ToText(), "A");
}

TEST_F(DispatchFaceTest, ReleasingTheLastReferenceTerminates) {
  Call(zebrin_, "Connect");
  EXPECT_FALSE(HostLink::Of(Host::kZebrin).empty());
  zebrin_.reset();
  EXPECT_TRUE(HostLink::Of(Host::kZebrin).empty());
}

TEST_F(DispatchFaceTest, CreateObjectByProgrammaticName) {
  RegisterClassFactory("Zebrin", NewZebrinObject);
  EXPECT_EQ(ErrorOf([] { CreateObject("QorvelOLE.Zebrin"); }), 429);  // not registered yet
  DllRegisterServer();
  auto object = CreateObject("qorvelole.zebrin");
  EXPECT_EQ(std::dynamic_pointer_cast<ClassObject>(object)->class_info().name, "Zebrin");
  EXPECT_EQ(ErrorOf([] { CreateObject("QorvelOLE.ValueBox"); }), 429);
}

}  // namespace
}  // namespace qorvel
