#include "qorvel/widgets/value_box.h"

#include <optional>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/registry_value.h"
#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/registry.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

constexpr int16_t kDefaultPlaces = 6;
constexpr uint32_t kButtonFace = 0x8000000F;  // the system colour, as the platform writes it
constexpr uint32_t kWhite = 0xFFFFFF;
constexpr float kSmallestSide = 100;  // below this a designer's drag leaves Text1 alone

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}
bool StartsWithMinus(const std::string& text) { return !text.empty() && text[0] == '-'; }

// The key code that types the first character of `text`, as the text box numbers keys (codes
// from 0x8000 up are negative); a character beyond 16 bits has none, and matches no key.
std::optional<int16_t> KeyOf(const std::string& text) {
  const uint32_t code = CharacterCode(text, 0);
  if (code > 0xFFFF) return std::nullopt;
  return static_cast<int16_t>(static_cast<uint16_t>(code));
}

}  // namespace

// Set around every rewrite of the text by the control itself; cleared again when the rewrite
// fails, so a failure can't leave the box deaf to the user.
class ValueBox::Rewriting {
 public:
  explicit Rewriting(ValueBox& box) : box_(box) { box_.Updating = true; }
  ~Rewriting() { box_.Updating = false; }
  Rewriting(const Rewriting&) = delete;
  Rewriting& operator=(const Rewriting&) = delete;

 private:
  ValueBox& box_;
};

// The shell gives Text1 to every control of kShell's kind.
void ValueBox::Sited(ControlShell& shell, ClassObject& face) {
  shell_ = &shell;
  face_ = &face;
  text1_ = &*shell.Text1;
  text1_->set_events(this);
}

void ValueBox::set_value(double& New_value) {
  CurrentValue = New_value;
  Changed("Value");
  {
    Rewriting rewriting(*this);
    if (ReformatText) {
      const int32_t caret = text1_->SelStart();
      text1_->SetText(FormatGeneral(New_value));
      text1_->SetSelStart(caret);
    }
    ReformatText = true;
  }
  // Updating is false again, so a client's handler may read or write value.
  if (face_ != nullptr) face_->RaiseEvent(kValueChanged, {});
}

void ValueBox::SetValue(double& New_value) {
  {
    Rewriting rewriting(*this);
    text1_->SetText(FormatGeneral(New_value));
  }
  CurrentValue = New_value;
  Changed("Value");
}

std::string ValueBox::TextValue() const {
  std::string pattern = "0";
  if (Places > 0) pattern += "." + std::string(Places, '0');
  return FormatPattern(CurrentValue, pattern);
}

int16_t ValueBox::DecimalPlaces() const {
  if (shell_ != nullptr && shell_->UserMode()) Raise(err::kPropertyAtRunTime);
  return Places;
}

void ValueBox::SetDecimalPlaces(int16_t New_DecimalPlaces) {
  Places = New_DecimalPlaces;
  Changed("DecimalPlaces");
}

VariantBool ValueBox::Readonly() const {
  if (shell_ != nullptr && shell_->UserMode()) Raise(err::kPropertyAtRunTime);
  return ReadOnlyFlag;
}

void ValueBox::SetReadonly(VariantBool New_ReadOnly) {
  ReadOnlyFlag = New_ReadOnly;
  Changed("ReadOnly");
  ApplyReadOnly(ReadOnlyFlag);
}

// The symbol is read once: a later change of the region reaches the number services, not the
// key filter. An empty symbol could match no key, so it counts as missing.
void ValueBox::Initialize() {
  ReformatText = true;
  DecimalSymbol = ReadRegistryValue(root_key::kCurrentUser, kInternationalKey, "sDecimal");
  if (DecimalSymbol == kNotFound || DecimalSymbol.empty()) DecimalSymbol = ".";
  ApplyReadOnly(ReadOnlyFlag);
}

// A new control shows an empty box, not 0.
void ValueBox::InitProperties() {
  Places = kDefaultPlaces;
  CurrentValue = 0;
  Updating = false;
  ReadOnlyFlag = VariantBool::kFalse;
  ReformatText = true;
}

// A loaded control shows its number, 0 included, and raises nothing.
void ValueBox::ReadProperties(const PropertyBag& bag) {
  CurrentValue = bag.ReadProperty("Value", int16_t{0}).ToDouble();
  {
    Rewriting rewriting(*this);
    text1_->SetText(FormatGeneral(CurrentValue));
  }
  Places = bag.ReadProperty("DecimalPlaces", kDefaultPlaces).ToInteger();
  ReadOnlyFlag = bag.ReadProperty("ReadOnly", VariantBool::kFalse).ToBool();
  ApplyReadOnly(ReadOnlyFlag);
}

void ValueBox::WriteProperties(PropertyBag& bag) {
  bag.WriteProperty("Value", CurrentValue, int16_t{0});
  bag.WriteProperty("DecimalPlaces", Places, kDefaultPlaces);
  bag.WriteProperty("ReadOnly", ReadOnlyFlag, VariantBool::kFalse);
}

// Text1 follows the control, but not down to a sliver; the control's own size is the
// container's.
void ValueBox::Resize() {
  if (shell_ == nullptr) return;
  const float width = shell_->user_control.Width;
  if (width < kSmallestSide) return;
  const float height = shell_->user_control.Height;
  if (height < kSmallestSide) return;
  text1_->Width = width;
  text1_->Height = height;
}

// Keys that can't belong to a number are swallowed without a word. The decimal symbol and the
// minus leave the text as typed; a decimal symbol at the front gets a 0 before it.
void ValueBox::Text1_KeyPress(int16_t& KeyAscii) {
  ReformatText = true;
  PrefixZero = false;
  const std::string& t = text1_->Text();
  const int32_t s = text1_->SelStart();
  if (KeyAscii == KeyOf(DecimalSymbol)) {
    const std::string sel = text1_->SelText();
    if (!Contains(sel, DecimalSymbol) && Contains(t, DecimalSymbol)) {
      KeyAscii = 0;  // a second symbol, unless it replaces the first
    } else if (s == 0 && StartsWithMinus(t) && !Contains(sel, "-")) {
      KeyAscii = 0;  // not in front of the sign
    } else {
      ReformatText = false;
      PrefixZero =
          (s == 0 && (Contains(sel, "-") || !StartsWithMinus(t))) || (s == 1 && StartsWithMinus(t));
    }
  } else if ((KeyAscii >= 0 && KeyAscii <= 31) || (KeyAscii >= '0' && KeyAscii <= '9')) {
    // Control keys and digits pass.
  } else if (KeyAscii == '-' && s == 0) {
    ReformatText = false;
  } else {
    KeyAscii = 0;
  }
  // A locked box takes no key, and a zero promised for one would land on its next change.
  if (text1_->Locked) PrefixZero = false;
}

// Errors are held back: text that is no number counts as 0, and nothing here stops the user.
void ValueBox::Text1_Change() {
  if (Updating) return;
  double d = ParseNumber(text1_->Text()).value_or(0);  // set_value takes a variable
  if (d != CurrentValue) HoldBack([&] { set_value(d); });
  if (PrefixZero) HoldBack([&] { PutZeroInFront(); });
}

void ValueBox::Text1_GotFocus() {
  text1_->SetSelStart(0);
  text1_->SetSelLength(static_cast<int32_t>(text1_->Text().size()));
}

// Whatever the box shows is read once more, and not reformatted for leaving.
void ValueBox::Text1_LostFocus() { Text1_Change(); }

void ValueBox::ApplyReadOnly(VariantBool& flag) {
  text1_->Locked = RawBool(flag) != 0;
  text1_->BackColor = flag == VariantBool::kTrue ? kButtonFace : kWhite;
}

// The caret comes to stand right behind the decimal symbol: the write put it at 0.
void ValueBox::PutZeroInFront() {
  {
    Rewriting rewriting(*this);
    const std::string& t = text1_->Text();
    if (StartsWithMinus(t)) {
      text1_->SetText("-0" + t.substr(1));
      text1_->SetSelStart(text1_->SelStart() + 3);
    } else {
      text1_->SetText("0" + t);
      text1_->SetSelStart(text1_->SelStart() + 2);
    }
  }
  PrefixZero = false;
}

void ValueBox::Changed(const char* property) {
  if (shell_ != nullptr) shell_->PropertyChanged(property);
}

}  // namespace qorvel
