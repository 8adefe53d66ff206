#include "qorvel/platform/running_objects.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel {
namespace {

using namespace std::chrono_literals;

class Named : public Dispatch {
 public:
  explicit Named(std::string name) : name_(std::move(name)) {}
  Variant Invoke(std::string_view, CallKind, std::span<Variant>) override { return name_; }

 private:
  std::string name_;
};

AutomationObject MakeNamed(const std::string& name) { return std::make_shared<Named>(name); }

TEST(RunningObjectsTest, BindRunningFindsTheRegisteredObjectByClassName) {
  MemoryRunningObjects table;
  AutomationObject host = MakeNamed("host");
  table.Register("Tarvik.Document", host);
  EXPECT_EQ(table.BindRunning("Tarvik.Document"), host);
  EXPECT_EQ(table.BindRunning("tarvik.document"), host);  // registry names ignore case
  EXPECT_EQ(ErrorOf([&] { table.BindRunning("Ulmora.Application"); }), err::kCantCreate);
  table.Revoke("TARVIK.Document");
  EXPECT_EQ(ErrorOf([&] { table.BindRunning("Tarvik.Document"); }), err::kCantCreate);
}

TEST(RunningObjectsTest, NothingRunningRaisesTheRuntimesError) {
  MemoryRunningObjects table;
  try {
    table.BindRunning("Zebrin.Document");
    FAIL() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 429);
    EXPECT_EQ(e.description(), "ActiveX component can't create object");
  }
}

TEST(RunningObjectsTest, AnObjectIsInvisibleUntilItsProgramHasRegistered) {
  MemoryRunningObjects table;
  table.Register("Zebrin.Document", MakeNamed("late"), RunningObjects::Clock::now() + 1h);
  EXPECT_EQ(ErrorOf([&] { table.BindRunning("Zebrin.Document"); }), err::kCantCreate);
  table.Register("Zebrin.Document", MakeNamed("early"), RunningObjects::Clock::now() - 1ms);
  EXPECT_EQ(GetMember(table.BindRunning("Zebrin.Document"), "x").ToText(), "early");
}

TEST(RunningObjectsTest, AnEmptyRegistrationIsNothingRunning) {
  MemoryRunningObjects table;
  table.Register("Zebrin.Document", nullptr);
  EXPECT_EQ(ErrorOf([&] { table.BindRunning("Zebrin.Document"); }), err::kCantCreate);
}

TEST(RunningObjectsTest, CreateNewAsksTheClassServerForANewObjectEachTime) {
  MemoryRunningObjects table;
  EXPECT_EQ(ErrorOf([&] { table.CreateNew("Ulmora.Application"); }), err::kCantCreate);
  int made = 0;
  table.RegisterClassServer("Ulmora.Application", [&] {
    ++made;
    return MakeNamed("new " + std::to_string(made));
  });
  AutomationObject first = table.CreateNew("Ulmora.Application");
  AutomationObject second = table.CreateNew("ulmora.application");
  EXPECT_NE(first, second);
  EXPECT_EQ(GetMember(second, "x").ToText(), "new 2");
  table.RevokeClassServer("Ulmora.Application");
  EXPECT_EQ(ErrorOf([&] { table.CreateNew("Ulmora.Application"); }), err::kCantCreate);
}

TEST(RunningObjectsTest, AServerThatMakesNothingCannotCreate) {
  MemoryRunningObjects table;
  table.RegisterClassServer("Broken.Server", [] { return AutomationObject(); });
  EXPECT_EQ(ErrorOf([&] { table.CreateNew("Broken.Server"); }), err::kCantCreate);
  table.RegisterClassServer("Failing.Server", []() -> AutomationObject { Raise(70); });
  EXPECT_EQ(ErrorOf([&] { table.CreateNew("Failing.Server"); }), 70);
}

TEST(RunningObjectsTest, AServerMayRegisterItsObjectWhileStarting) {
  MemoryRunningObjects table;
  table.RegisterClassServer("Tarvik.Document", [&] {
    AutomationObject object = MakeNamed("started");
    table.Register("Tarvik.Document", object);
    return object;
  });
  AutomationObject created = table.CreateNew("Tarvik.Document");
  EXPECT_EQ(table.BindRunning("Tarvik.Document"), created);
}

TEST(EnvTest, ScopedEnvironmentsNestAndRestore) {
  Env& process = Env::Current();
  EXPECT_EQ(&Env::Current(), &process);
  {
    ScopedEnv outer;
    EXPECT_EQ(&Env::Current(), &outer.env());
    {
      ScopedEnv inner;
      EXPECT_EQ(&Env::Current(), &inner.env());
      inner.env().running_objects().Register("A.B", MakeNamed("inner"));
    }
    EXPECT_EQ(&Env::Current(), &outer.env());
    EXPECT_EQ(ErrorOf([] { Env::Current().running_objects().BindRunning("A.B"); }),
              err::kCantCreate);
  }
  EXPECT_EQ(&Env::Current(), &process);
}

}  // namespace
}  // namespace qorvel
