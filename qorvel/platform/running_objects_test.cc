#include "qorvel/platform/running_objects.h"

#include <gtest/gtest.h>

#include <vector>

#include "qorvel/platform/collection.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel {
namespace {

using namespace std::chrono_literals;

TEST(RunningObjectsTest, BindRunningFindsWhatIsRegisteredAndVisibleByClassName) {
  MemoryRunningObjects table;
  try {
    table.BindRunning("Zebrin.Document");
    FAIL() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 429);
    EXPECT_EQ(e.description(), "ActiveX component can't create object");
  }
  AutomationObject host = NewCollection();
  table.Register("Tarvik.Document", host);
  EXPECT_EQ(table.BindRunning("tarvik.DOCUMENT"), host);  // names ignore case
  table.Revoke("TARVIK.Document");
  table.Register("Ulmora.Application", nullptr);  // an empty registration is nothing running
  // A program that is still starting has not registered yet.
  table.Register("Zebrin.Document", host, RunningObjects::Clock::now() + 1h);
  for (const char* name : {"Tarvik.Document", "Ulmora.Application", "Zebrin.Document"}) {
    EXPECT_EQ(ErrorOf([&] { table.BindRunning(name); }), err::kCantCreate) << name;
  }
  table.Register("Zebrin.Document", host, RunningObjects::Clock::now() - 1ms);
  EXPECT_EQ(table.BindRunning("Zebrin.Document"), host);
}

TEST(RunningObjectsTest, CreateNewAsksTheClassServerForANewObjectEachTime) {
  MemoryRunningObjects table;
  EXPECT_EQ(ErrorOf([&] { table.CreateNew("Ulmora.Application"); }), err::kCantCreate);
  std::vector<AutomationObject> made;
  table.RegisterClassServer("Ulmora.Application",
                            [&] { return made.emplace_back(NewCollection()); });
  AutomationObject first = table.CreateNew("Ulmora.Application");
  AutomationObject second = table.CreateNew("ulmora.application");
  EXPECT_EQ(made, (std::vector<AutomationObject>{first, second}));
  EXPECT_NE(first, second);
  table.RevokeClassServer("Ulmora.Application");
  EXPECT_EQ(ErrorOf([&] { table.CreateNew("Ulmora.Application"); }), err::kCantCreate);

  table.RegisterClassServer("Broken.Server", [] { return AutomationObject(); });
  EXPECT_EQ(ErrorOf([&] { table.CreateNew("Broken.Server"); }), err::kCantCreate);
  table.RegisterClassServer("Failing.Server", []() -> AutomationObject { Raise(70); });
  EXPECT_EQ(ErrorOf([&] { table.CreateNew("Failing.Server"); }), 70);
  // A server may register its object while it starts.
  table.RegisterClassServer("Tarvik.Document", [&] {
    table.Register("Tarvik.Document", NewCollection());
    return table.BindRunning("Tarvik.Document");
  });
  AutomationObject created = table.CreateNew("Tarvik.Document");
  EXPECT_EQ(table.BindRunning("Tarvik.Document"), created);
}

}  // namespace
}  // namespace qorvel
