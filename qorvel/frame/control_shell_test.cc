#include "qorvel/frame/control_shell.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/platform/env.h"
#include "qorvel/session/zebrin_face.h"

namespace qorvel {
namespace {

TEST(ControlShellTest, SizesSnapBackOnEveryResize) {
  struct Case {
    const char* control;
    float width, height;
  } cases[] = {{"Zebrin", 500, 500},
               {"Tarvik3", 500, 500},
               {"Ulmora27", 500, 500},
               {"UlmoraNearestPoints", 480, 480},
               {"UlmoraSurfaceInfo", 480, 480},
               {"ValueBox", 1234, 321}};
  for (const Case& c : cases) {
    ControlShell shell(c.control);
    shell.SetExtent(1234, 321);
    EXPECT_EQ(shell.user_control.Width, c.width) << c.control;
    EXPECT_EQ(shell.user_control.Height, c.height) << c.control;
    EXPECT_EQ(shell.user_control.Picture.empty() && !shell.Image1,
              std::string(c.control) == "ValueBox");
    shell.Resize();  // a resize caused by the handler's own change ends in the same place
    EXPECT_EQ(shell.user_control.Width, c.width) << c.control;
  }
}

TEST(ControlShellTest, TerminateOfOneInstanceDisconnectsTheOthers) {
  ScopedEnv env;
  HostLink::Of(Host::kZebrin).Clear();
  auto host = hosts::RunZebrin();
  AutomationObject first = NewZebrinObject();
  AutomationObject second = NewZebrinObject();
  Call(first, "Connect");
  EXPECT_EQ(GetMember(second, "Connected").ToBool(), VariantBool::kTrue);
  EXPECT_EQ(std::dynamic_pointer_cast<ClassObject>(first)->shell().user_control.Width, 500);
  first.reset();  // the container destroys it: Terminate runs Disconnect
  EXPECT_EQ(GetMember(second, "Connected").ToBool(), VariantBool::kFalse);
  EXPECT_TRUE(env.env().messages().shown().empty());
}

}  // namespace
}  // namespace qorvel
