#ifndef QORVEL_WIDGETS_VALUE_BOX_H_
#define QORVEL_WIDGETS_VALUE_BOX_H_

#include <cstdint>
#include <string>

#include "qorvel/frame/control_shell.h"
#include "qorvel/platform/text_box.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

class ClassObject;

// A box for entering one Double by the user's regional settings: the text box Text1 over a
// stored number. A key filter lets through only what can belong to a number, every change of
// the text is read as a number at once, and a new number is written back as text. The text may
// show forms only typing gives (a trailing decimal symbol, trailing zeros, a lone sign) for as
// long as their number stands. Each change of the number raises ValueChanged.
class ValueBox final : public ControlEvents, public TextBoxEvents {
 public:
  static constexpr ShellSize kShell = ShellSize::kTextBox;
  static constexpr int32_t kValueChanged = 1;  // the DISPID of ValueChanged
  // What ReadProperties reads, and as what.
  static constexpr SavedProperty kSavedProperties[] = {{"Value", VarType::kDouble},
                                                       {"DecimalPlaces", VarType::kInteger},
                                                       {"ReadOnly", VarType::kBool}};

  ValueBox() { text1_->set_events(this); }
  ValueBox(const ValueBox&) = delete;
  ValueBox& operator=(const ValueBox&) = delete;

  // Takes the shell's Text1 for its own and the face to raise ValueChanged through.
  void Sited(ControlShell& shell, ClassObject& face) override;

  // The number; reading it never looks at the text.
  double value() const { return CurrentValue; }
  // The user-visible write: shows the number, unless a decimal symbol or minus was just typed,
  // and raises ValueChanged, also for the number it held. Both writes take the client's
  // variable and only read it.
  void set_value(double& New_value);
  // The silent write: shows the number and raises nothing.
  void SetValue(double& New_value);
  // The number with exactly DecimalPlaces decimals (none for a negative count).
  std::string TextValue() const;
  // The design-time properties: written at any time, read only in a designer (393 at run time).
  int16_t DecimalPlaces() const;
  void SetDecimalPlaces(int16_t New_DecimalPlaces);
  VariantBool Readonly() const;
  void SetReadonly(VariantBool New_ReadOnly);

  // The container's events.
  void Initialize() override;
  void InitProperties() override;
  void ReadProperties(const PropertyBag& bag) override;
  void WriteProperties(PropertyBag& bag) override;
  void Resize() override;

  // Text1's events.
  void Text1_KeyPress(int16_t& KeyAscii) override;
  void Text1_Change() override;
  void Text1_GotFocus() override;
  void Text1_LostFocus() override;

 private:
  // Holds Text1's change handler off while the control rewrites the text itself.
  class Rewriting;

  void ApplyReadOnly(VariantBool& flag);
  void PutZeroInFront();
  void Changed(const char* property);

  VariantBool ReadOnlyFlag = VariantBool::kFalse;
  int16_t Places = 0;
  double CurrentValue = 0;
  bool Updating = false;
  std::string DecimalSymbol;
  bool ReformatText = false;
  bool PrefixZero = false;

  TextBox loose_;  // Text1 until the control is sited
  TextBox* text1_ = &loose_;
  ControlShell* shell_ = nullptr;
  ClassObject* face_ = nullptr;
};

}  // namespace qorvel

#endif  // QORVEL_WIDGETS_VALUE_BOX_H_
