#include "qorvel/server/form.h"

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/frame/form_file.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/file_bytes.h"
#include "qorvel/platform/text.h"
#include "qorvel/server/classes.h"

namespace qorvel {
namespace {

constexpr std::string_view kProgIdPrefix = "QorvelOLE.";
constexpr size_t kMostFormBytes = size_t{16} << 20;  // a form holds a few lines a control

std::string_view ClassName(std::string_view name) {
  if (name.size() > kProgIdPrefix.size() &&
      EqualsNoCase(name.substr(0, kProgIdPrefix.size()), kProgIdPrefix)) {
    name.remove_prefix(kProgIdPrefix.size());
  }
  return name;
}

// Runs `check` for what stands on `line` of `path`; its error, whatever its number, names both.
template <class Check>
void AtLine(const std::string& path, int line, Check check) {
  try {
    check();
  } catch (const Error& e) {
    Raise(e.number(), path + ": line " + std::to_string(line) + ": " + e.description());
  }
}

// What a control's ReadProperties will make of its saved state, tried before any control is
// made: the class must be a control of the library and each property it reads must convert.
void CheckSaved(const SavedControl& c, const std::string& path) {
  std::span<const SavedProperty> reads;
  AtLine(path, c.line, [&] { reads = SavedPropertiesOf(ClassName(c.class_name)); });
  const auto& entries = c.bag.entries();
  for (size_t i = 0; i < entries.size(); ++i) {
    for (const SavedProperty& p : reads) {
      if (!EqualsNoCase(p.name, entries[i].first)) continue;
      AtLine(path, c.property_lines[i], [&] { entries[i].second.ConvertTo(p.type); });
    }
  }
}

}  // namespace

AutomationObject Form::Site(std::string_view class_name, const std::string& name,
                            const PropertyBag* saved) {
  if (!IsFormName(name)) Raise(err::kInvalidCall, "\"" + name + "\" is not a control name");
  const std::string key = UpperCase(name);
  if (index_.contains(key)) {
    Raise(err::kInvalidCall, "The form has a control named " + name + " already");
  }
  AutomationObject control = SiteControl(ClassName(class_name), *container_, saved);
  controls_.emplace_back(name, control);
  index_.emplace(key, controls_.size() - 1);
  return control;
}

AutomationObject Form::Add(std::string_view class_name, const std::string& name) {
  return Site(class_name, name, nullptr);
}

AutomationObject Form::Find(std::string_view name) const {
  const auto it = index_.find(UpperCase(name));
  return it == index_.end() ? nullptr : controls_[it->second].second;
}

std::string Form::Text() const {
  std::vector<SavedControl> saved;
  saved.reserve(controls_.size());
  for (const auto& [name, control] : controls_) {
    auto shell = std::dynamic_pointer_cast<ControlShell>(control);
    auto face = std::dynamic_pointer_cast<ClassObject>(control);
    saved.push_back({face->class_info().name, name, shell->Save()});
  }
  return FormText(saved);
}

void Form::Save(const std::string& path) {
  WriteFileBytes(path, Text());
  container_->ClearPropertyChanges();
}

std::unique_ptr<Form> Form::Load(const std::string& path, bool user_mode) {
  return FromText(ReadFileBytes(path, kMostFormBytes, "a form file"), path, user_mode);
}

std::unique_ptr<Form> Form::FromText(std::string_view text, const std::string& source,
                                     bool user_mode) {
  const std::vector<SavedControl> saved = ParseFormText(text, source);
  for (const SavedControl& c : saved) CheckSaved(c, source);
  auto form = std::make_unique<Form>(user_mode);
  form->controls_.reserve(saved.size());
  for (const SavedControl& c : saved) form->Site(c.class_name, c.name, &c.bag);
  return form;
}

}  // namespace qorvel
