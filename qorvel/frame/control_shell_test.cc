#include "qorvel/frame/control_shell.h"

#include <gtest/gtest.h>

#include "hosts/simulators.h"
#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/host_link.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/session/zebrin_face.h"

namespace qorvel {
namespace {

constexpr uint8_t kPictureBytes[] = {1, 2, 3};
constexpr std::span<const uint8_t> kPicture(kPictureBytes);

// The events a container sends, recorded.
class EventLog : public ControlEvents {
 public:
  explicit EventLog(std::vector<std::string>* events) : events_(events ? events : &own_) {}

  std::string fail_on;  // the event whose handler raises

  void Initialize() override { Note("Initialize"); }
  void InitProperties() override { Note("InitProperties"); }
  void ReadProperties(const PropertyBag& bag) override {
    Note("ReadProperties " + bag.ReadProperty("Value", int16_t{0}).ToText());
  }
  void WriteProperties(PropertyBag& bag) override {
    Note("WriteProperties");
    bag.WriteProperty("Value", 2.5, int16_t{0});
  }
  void Resize() override { Note("Resize"); }
  void Terminate() override { Note("Terminate"); }

  std::vector<std::string>& events() { return *events_; }

 private:
  void Note(std::string event) {
    if (fail_on == event) Raise(err::kInvalidCall);
    events_->push_back(std::move(event));
  }

  std::vector<std::string> own_;
  std::vector<std::string>* events_;
};

struct EventLogHolder {
  EventLog log;
};

// A control that records the events its container sends; the log is made before the shell.
class Recorder : private EventLogHolder, public ControlShell {
 public:
  explicit Recorder(ShellSize size, std::vector<std::string>* events = nullptr)
      : EventLogHolder{EventLog(events)}, ControlShell({size, kPicture}, log) {}

  std::string& fail_on = log.fail_on;
  std::vector<std::string>& events() { return log.events(); }
};

TEST(ControlShellTest, SizesSnapBackOnEveryResize) {
  struct Case {
    ShellSize size;
    float width, height;
    bool picture_on_user_control, has_image;
  } cases[] = {{ShellSize::kHostControl, 500, 500, true, false},
               {ShellSize::kImage, 480, 480, false, true},
               {ShellSize::kFree, 1234, 321, true, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.size));
    Recorder control(c.size);
    control.SetExtent(1234, 321);
    EXPECT_EQ(control.user_control.Width, c.width);
    EXPECT_EQ(control.user_control.Height, c.height);
    EXPECT_EQ(!control.user_control.Picture.empty(), c.picture_on_user_control);
    EXPECT_EQ(control.Image1.has_value(), c.has_image);
    if (c.has_image) {
      EXPECT_FALSE(control.Image1->Picture.empty());
    }
    // The handler's own change brings one more Resize, which sets the same size and ends there;
    // a control free in size gets the one.
    const size_t resizes = c.width == 1234 ? 1 : 2;
    EXPECT_EQ(control.events(), std::vector<std::string>(resizes, "Resize"));
    control.events().clear();
    control.SetExtent(c.width, c.height);
    EXPECT_EQ(control.events().size(), 1u);
  }
}

TEST(ControlShellTest, ImageControlsFollowTheirImageNotTheAskedSize) {
  Recorder control(ShellSize::kImage);
  control.Image1->Width = 300;  // only one axis changed: the other stays at the picture's
  control.SetExtent(500, 500);
  EXPECT_EQ(control.user_control.Width, 300);
  EXPECT_EQ(control.user_control.Height, 480);
}

TEST(ControlShellTest, ContainerSendsTheEventsInOrder) {
  auto designer = std::make_shared<Container>(/*user_mode=*/false);
  std::vector<std::string> events;
  auto fresh = designer->Site(std::make_unique<Recorder>(ShellSize::kFree, &events));
  EXPECT_FALSE(fresh->UserMode());
  EXPECT_EQ(events, (std::vector<std::string>{"Initialize", "InitProperties", "Resize"}));

  const PropertyBag saved = fresh->Save();
  EXPECT_EQ(saved.ReadProperty("value").ToDouble(), 2.5);
  events.clear();
  auto loaded = designer->Site(std::make_unique<Recorder>(ShellSize::kFree, &events), &saved);
  EXPECT_EQ(events, (std::vector<std::string>{"Initialize", "ReadProperties 2.5", "Resize"}));

  events.clear();
  fresh.reset();
  loaded.reset();
  EXPECT_EQ(events, (std::vector<std::string>{"Terminate", "Terminate"}));
}

TEST(ControlShellTest, AFailedStartRaisesAndSendsNoTerminate) {
  for (const char* failing : {"Initialize", "Resize"}) {
    std::vector<std::string> events;
    auto control = std::make_unique<Recorder>(ShellSize::kHostControl, &events);
    control->fail_on = failing;
    EXPECT_EQ(ErrorOf([&] { Container::RunTime().Site(std::move(control)); }), 5) << failing;
    EXPECT_EQ(std::count(events.begin(), events.end(), "Terminate"), 0) << failing;
  }
  std::vector<std::string> events;
  auto control = std::make_unique<Recorder>(ShellSize::kHostControl, &events);
  control->fail_on = "Terminate";
  Container::RunTime().Site(std::move(control)).reset();  // swallowed: nobody to tell
}

TEST(ControlShellTest, AmbientUserModeAndPropertyChanges) {
  auto form = std::make_shared<Container>();
  auto control = form->Site(std::make_unique<Recorder>(ShellSize::kFree));
  EXPECT_TRUE(control->UserMode());
  form->set_user_mode(false);
  EXPECT_FALSE(control->UserMode());
  for (const char* name : {"DecimalPlaces", "ReadOnly", "DecimalPlaces"}) {
    control->PropertyChanged(name);
  }
  EXPECT_EQ(form->property_changes(), (std::vector<std::string>{"DecimalPlaces", "ReadOnly"}));
  form->ClearPropertyChanges();
  control->PropertyChanged("ReadOnly");
  EXPECT_EQ(form->property_changes(), (std::vector<std::string>{"ReadOnly"}));

  // The control keeps its form: the form's last other owner may go first.
  std::weak_ptr<Container> watch = form;
  form.reset();
  EXPECT_FALSE(control->UserMode());
  control.reset();
  EXPECT_TRUE(watch.expired());
  EXPECT_TRUE(Container::RunTime().UserMode());
  EXPECT_TRUE(Recorder(ShellSize::kFree).UserMode());  // not sited: taken to run
}

TEST(ControlShellTest, PropertyBagLeavesOutDefaults) {
  PropertyBag bag;
  bag.WriteProperty("Value", 0.0, int16_t{0});  // a Double 0 equals the Integer default
  bag.WriteProperty("DecimalPlaces", int16_t{6}, int16_t{6});
  bag.WriteProperty("ReadOnly", VariantBool::kFalse, false);
  EXPECT_EQ(bag.size(), 0u);
  EXPECT_EQ(bag.ReadProperty("DecimalPlaces", int16_t{6}).vt(), 2);
  EXPECT_EQ(bag.ReadProperty("DecimalPlaces", int16_t{6}).ToLong(), 6);

  bag.WriteProperty("Value", 1.25, int16_t{0});
  bag.WriteProperty("ReadOnly", VariantBool::kTrue, false);
  bag.WriteProperty("Caption", "", "");
  EXPECT_TRUE(bag.Contains("VALUE"));
  EXPECT_EQ(bag.ReadProperty("value", int16_t{0}).vt(), 5);
  EXPECT_EQ(bag.ReadProperty("value", int16_t{0}).ToDouble(), 1.25);
  EXPECT_EQ(bag.ReadProperty("ReadOnly", false).ToBool(), VariantBool::kTrue);
  EXPECT_EQ(bag.size(), 2u);

  bag.WriteProperty("Value", int32_t{0}, int16_t{0});  // back to the default: the key goes
  EXPECT_FALSE(bag.Contains("Value"));
  EXPECT_EQ(bag.ReadProperty("Missing").vt(), 0);
}

}  // namespace
}  // namespace qorvel
