#include "shell/lua_holders.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/server/registration.h"
#include "shell/lua_errors.h"
#include "shell/qvsh.h"

namespace qvsh {
namespace {

// A finalizer that runs as the state closes makes values Lua will never finalize; the shell
// releases them once the state is gone, Terminate included, while the environment is there.
TEST(CloseStateTest, ReleasesWhatTheLastFinalizersMade) {
  qorvel::ScopedEnv env;
  qorvel::hosts::InstallSimulatedHosts();
  qorvel::DllRegisterServer();
  const auto host = qorvel::hosts::RunZebrin();
  lua_State* L = NewState();
  luaL_openlibs(L);
  OpenErrors(L);
  OpenValues(L);
  OpenArrays(L);
  OpenObjects(L);
  OpenForms(L);
  ASSERT_EQ(luaL_dostring(L, R"(
    setmetatable({}, {__gc = function()
      local zebrin = CreateObject("QorvelOLE.Zebrin")
      zebrin:Connect(0)
      local form = Form()
      local amount = form:Add("ValueBox", "Amount")
      Advise(amount, {ValueChanged = function() end})
      kept = {zebrin, form, Text1(amount), SafeArray("text", {1, 2}), Collection()}
    end})
  )"),
            LUA_OK);
  ASSERT_TRUE(StateOpen(L));
  CloseState(L);

  EXPECT_FALSE(StateOpen(L));
  EXPECT_EQ(qorvel::LiveObjects(), 0);
  // The Zebrin's Terminate emptied the thread's link: a new control finds no host to ask.
  host->ClearLog();
  const qorvel::AutomationObject zebrin = qorvel::CreateObject("QorvelOLE.Zebrin");
  EXPECT_EQ(qorvel::GetMember(zebrin, "Connected").ToBool(), qorvel::VariantBool::kFalse);
  EXPECT_TRUE(host->log().empty());
}

}  // namespace
}  // namespace qvsh
