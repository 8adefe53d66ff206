#include "qorvel/widgets/value_box.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "qorvel/frame/control.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/text.h"
#include "qorvel/widgets/value_box_face.h"

namespace qorvel {
namespace {

using Box = std::shared_ptr<Control<ValueBox>>;

// A client's sink: counts ValueChanged and runs the client's handler for it.
class Sink : public Dispatch {
 public:
  Variant Invoke(std::string_view, CallKind, std::span<Variant>) override { Raise(438); }
  Variant InvokeById(int32_t dispid, CallKind, std::span<Variant>) override {
    if (dispid == 1) ++heard;
    if (handler) handler();
    return Variant();
  }
  int heard = 0;
  std::function<void()> handler;
};

class ValueBoxTest : public ::testing::Test {
 protected:
  ValueBoxTest() { SetDecimalSymbol(env_.env().registry(), "."); }

  // A control on `form`, its sink connected before the container's first event.
  Box Site(Container& form, const PropertyBag* saved = nullptr) {
    auto control = std::make_unique<Control<ValueBox>>(ShellTraits{ValueBox::kShell, {}});
    control->Advise(sink_);
    return form.Site(std::move(control), saved);
  }
  Box Site() { return Site(*form_); }
  static double Value(const Box& box) { return GetMember(box, "value").ToDouble(); }

  ScopedEnv env_;
  std::shared_ptr<Container> form_ = std::make_shared<Container>();
  std::shared_ptr<Sink> sink_ = std::make_shared<Sink>();
};

constexpr int32_t kEnd = -1;
constexpr int16_t kBack = 8;

// One key in a box that shows `text` over `value`, with the point standing for the region's
// decimal symbol.
struct Typing {
  const char* text;
  double value;
  int32_t caret, selected;
  int16_t key;
  const char* text_after;
  int32_t caret_after;
  double value_after;
  bool event;
};
constexpr Typing kEdgeTable[] = {
    {"", 0, kEnd, 0, '1', "1", 1, 1, true},
    {"1", 1, kEnd, 0, '.', "1.", 2, 1, false},
    {"1.", 1, kEnd, 0, '5', "1.5", 3, 1.5, true},
    {"1.5", 1.5, kEnd, 0, '0', "1.50", 4, 1.5, false},
    {"1.50", 1.5, kEnd, 0, '7', "1.507", 5, 1.507, true},
    {"", 0, kEnd, 0, '.', "0.", 2, 0, false},
    {"5", 5, 0, 0, '.', "0.5", 2, 0.5, true},
    {"", 0, kEnd, 0, '-', "-", 1, 0, false},
    {"-", 0, kEnd, 0, '.', "-0.", 3, 0, false},
    {"-", 0, kEnd, 0, '5', "-5", 2, -5, true},
    {"-5", -5, 0, 0, '.', "-5", 0, -5, false},
    {"-5", -5, 0, 2, '.', "0.", 2, 0, true},
    {"5", 5, 1, 0, '-', "5", 1, 5, false},
    {"-5", -5, 0, 0, '-', "--5", 1, 0, true},
    {"5", 5, kEnd, 0, kBack, "0", 0, 0, true},
    {"", 0, kEnd, 0, kBack, "", 0, 0, false},
    {"0", 0, 1, 0, '5', "5", 1, 5, true},
    {"1.5", 1.5, kEnd, 0, '.', "1.5", 3, 1.5, false},
};

std::string InRegion(const std::string& text, const std::string& symbol) {
  std::string out;
  for (char c : text) out += c == '.' ? symbol : std::string(1, c);
  return out;
}

// The symbol is one character, of one byte or more: its key is its character code.
void TypeTheEdgeTable(const std::string& symbol, const std::function<Box()>& site, Sink& sink) {
  const auto symbol_key = static_cast<int16_t>(CharacterCode(symbol, 0));
  for (const Typing& row : kEdgeTable) {
    Box box = site();
    TextBox& text1 = *box->Text1;
    double value = row.value;  // SetValue takes the client's variable
    box->object().SetValue(value);
    text1.SetText(InRegion(row.text, symbol));
    text1.SetSelStart(row.caret == kEnd ? CharacterCount(text1.Text()) : row.caret);
    text1.SetSelLength(row.selected);
    sink.heard = 0;
    text1.TypeKey(row.key == '.' ? symbol_key : row.key);
    const std::string where = "'" + std::string(row.text) + "' + key " + std::to_string(row.key);
    EXPECT_EQ(text1.Text(), InRegion(row.text_after, symbol)) << where;
    EXPECT_EQ(text1.SelStart(), row.caret_after) << where;
    EXPECT_EQ(GetMember(box, "value").ToDouble(), row.value_after) << where;
    EXPECT_EQ(sink.heard, row.event ? 1 : 0) << where;
  }
}

TEST_F(ValueBoxTest, EdgeTableInAPointRegion) {
  TypeTheEdgeTable(
      ".", [this] { return Site(); }, *sink_);
}

// The Arabic decimal separator is two bytes in UTF-8 and one key.
TEST_F(ValueBoxTest, EdgeTableWithAMultiByteSymbol) {
  SetDecimalSymbol(env_.env().registry(), "\u066B");
  TypeTheEdgeTable(
      "\u066B", [this] { return Site(); }, *sink_);
}

TEST_F(ValueBoxTest, CommaRegionTakesTheCommaAndSwallowsThePoint) {
  SetDecimalSymbol(env_.env().registry(), ",");
  TypeTheEdgeTable(
      ",", [this] { return Site(); }, *sink_);
  Box box = Site();
  for (int16_t key : {int16_t{'1'}, int16_t{'.'}, int16_t{'5'}}) box->Text1->TypeKey(key);
  EXPECT_EQ(box->Text1->Text(), "15");
  EXPECT_EQ(box->object().TextValue(), "15,000000");
}

// Text that is no number counts as 0: an emptied box, a lone sign, a paste of letters. The text
// is reformatted only when the number falls from something else to 0.
TEST_F(ValueBoxTest, TextThatIsNoNumberCountsAsZero) {
  env_.env().clipboard().SetText("abc");
  const struct {
    double value;  // shown with SetValue, or 0 for a new box's empty text
    const char* keys;
    const char* text_after;
    int events;
  } cases[] = {{5, "\b", "0", 1},
               {0, "\b", "", 0},
               {0, "-", "-", 0},
               {5, "\x16", "0", 1},
               {0, "\x16", "abc", 0}};
  for (const auto& c : cases) {
    Box box = Site();
    double value = c.value;
    if (value != 0) box->object().SetValue(value);
    box->Text1->GotFocus();  // selects it all
    for (const char* k = c.keys; *k != '\0'; ++k) box->Text1->TypeKey(*k);
    box->Text1->LostFocus();
    EXPECT_EQ(box->Text1->Text(), c.text_after) << c.value << " " << int{c.keys[0]};
    EXPECT_EQ(Value(box), 0);
    EXPECT_EQ(sink_->heard, c.events) << c.value << " " << int{c.keys[0]};
    sink_->heard = 0;
  }
}

TEST_F(ValueBoxTest, ValueRaisesEveryTimeAndSetValueNever) {
  Box box = Site();
  SetMember(box, "value", 7.0);
  SetMember(box, "value", 7.0);
  EXPECT_EQ(sink_->heard, 2);
  SetMember(box, "SetValue", 8.0);
  EXPECT_EQ(sink_->heard, 2);
  EXPECT_EQ(box->Text1->Text(), "8");
  EXPECT_EQ(Value(box), 8);
}

TEST_F(ValueBoxTest, TextValueRoundsToThePlacesWhateverTheBoxShows) {
  const struct {
    int16_t places;
    const char* typed;
    const char* text_value;
  } cases[] = {{0, "1.5", "2"},         {3, "1.5", "1.500"},     {6, "1.5", "1.500000"},
               {3, "1.23456", "1.235"}, {6, "1.25", "1.250000"}, {-2, "7.5", "8"}};
  for (const auto& c : cases) {
    Box box = Site();
    SetMember(box, "DecimalPlaces", c.places);
    for (const char* k = c.typed; *k != '\0'; ++k) box->Text1->TypeKey(*k);
    EXPECT_EQ(box->Text1->Text(), c.typed);
    EXPECT_EQ(GetMember(box, "TextValue").ToText(), c.text_value) << c.places;
  }
}

TEST_F(ValueBoxTest, NewControlIsEmptyAndLoadedOneShowsItsNumber) {
  Box fresh = Site();
  EXPECT_EQ(fresh->Text1->Text(), "");
  EXPECT_EQ(GetMember(fresh, "TextValue").ToText(), "0.000000");
  PropertyBag saved = fresh->Save();
  EXPECT_EQ(saved.size(), 0u);  // every property at its default
  EXPECT_EQ(Site(*form_, &saved)->Text1->Text(), "0");
}

TEST_F(ValueBoxTest, SavesWhatDiffersFromTheDefaultsAndLoadsSilently) {
  auto designer = std::make_shared<Container>(/*user_mode=*/false);
  Box box = Site(*designer);
  SetMember(box, "value", 2.5);
  SetMember(box, "DecimalPlaces", int16_t{3});
  SetMember(box, "Readonly", true);
  const PropertyBag saved = box->Save();
  EXPECT_EQ(saved.ReadProperty("Value").type(), VarType::kDouble);
  EXPECT_EQ(saved.ReadProperty("DecimalPlaces").type(), VarType::kInteger);
  EXPECT_EQ(saved.ReadProperty("ReadOnly").type(), VarType::kBool);
  sink_->heard = 0;
  Box loaded = Site(*designer, &saved);
  EXPECT_EQ(sink_->heard, 0);
  EXPECT_EQ(loaded->Text1->Text(), "2.5");
  EXPECT_EQ(Value(loaded), 2.5);
  EXPECT_EQ(GetMember(loaded, "DecimalPlaces").ToInteger(), 3);
  EXPECT_EQ(GetMember(loaded, "Readonly").ToBool(), VariantBool::kTrue);
  EXPECT_TRUE(loaded->Text1->Locked);
}

TEST_F(ValueBoxTest, TextBoxFollowsTheSizeDownTo100) {
  Box box = Site();
  const struct {
    float width, height, text_width, text_height;
  } cases[] = {
      {500, 400, 500, 400}, {99, 500, 500, 400}, {500, 99, 500, 400}, {100, 100, 100, 100}};
  for (const auto& c : cases) {
    box->SetExtent(c.width, c.height);
    EXPECT_EQ(box->Text1->Width, c.text_width) << c.width << "x" << c.height;
    EXPECT_EQ(box->Text1->Height, c.text_height) << c.width << "x" << c.height;
    EXPECT_EQ(box->user_control.Width, c.width);  // the control keeps what it was given
  }
  EXPECT_EQ(box->Text1->Left, 0);
  EXPECT_EQ(box->Text1->Top, 0);
}

TEST_F(ValueBoxTest, ReadonlyLocksAndGreysOnlyForTrue) {
  Box box = Site();
  const struct {
    int16_t flag;
    bool locked;
    uint32_t colour;
  } cases[] = {{-1, true, 0x8000000F}, {0, false, 0xFFFFFF}, {1, true, 0xFFFFFF}};
  for (const auto& c : cases) {
    SetMember(box, "Readonly", MakeVariantBool(c.flag));
    EXPECT_EQ(box->Text1->Locked, c.locked) << c.flag;
    EXPECT_EQ(box->Text1->BackColor, c.colour) << c.flag;
  }
  SetMember(box, "Readonly", true);
  box->Text1->TypeKey('.');
  box->Text1->LostFocus();  // the refused symbol leaves no zero behind
  SetMember(box, "SetValue", 4.0);
  EXPECT_EQ(box->Text1->Text(), "4");
}

TEST_F(ValueBoxTest, DesignTimePropertiesRaise393AtRunTime) {
  AutomationObject box = NewControl<ValueBox>();
  SetMember(box, "DecimalPlaces", int16_t{2});
  EXPECT_EQ(ErrorOf([&] { GetMember(box, "DecimalPlaces"); }), 393);
  EXPECT_EQ(ErrorOf([&] { GetMember(box, "Readonly"); }), 393);
  EXPECT_EQ(GetMember(box, "TextValue").ToText(), "0.00");

  auto designer = std::make_shared<Container>(/*user_mode=*/false);
  Box placed = Site(*designer);
  EXPECT_EQ(GetMember(placed, "DecimalPlaces").ToInteger(), 6);
  EXPECT_EQ(GetMember(placed, "Readonly").ToBool(), VariantBool::kFalse);
}

TEST_F(ValueBoxTest, EveryWriteTellsTheContainer) {
  Box box = Site();
  SetMember(box, "value", 1.0);
  SetMember(box, "SetValue", 2.0);
  SetMember(box, "DecimalPlaces", int16_t{3});
  SetMember(box, "Readonly", false);
  box->Text1->TypeKey('5');
  EXPECT_EQ(form_->property_changes(),
            (std::vector<std::string>{"Value", "DecimalPlaces", "ReadOnly"}));
}

TEST_F(ValueBoxTest, ClientHandlerMayReadAndWriteValue) {
  Box box = Site();
  Dispatch* face = box.get();  // not the shared reference: the sink mustn't keep the box alive
  std::vector<double> seen;
  sink_->handler = [&] {
    AutomationObject self(std::shared_ptr<Dispatch>(), face);  // an alias that owns nothing
    seen.push_back(GetMember(self, "value").ToDouble());
    if (seen.back() == 1) SetMember(self, "value", 2.0);
  };
  box->Text1->TypeKey('1');
  EXPECT_EQ(seen, (std::vector<double>{1, 2}));
  EXPECT_EQ(box->Text1->Text(), "2");
  EXPECT_EQ(Value(box), 2);
}

}  // namespace
}  // namespace qorvel
