#include "qorvel/server/form.h"

#include <fstream>

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

}  // namespace

AutomationObject Form::Site(std::string_view class_name, const std::string& name,
                            const PropertyBag* saved) {
  if (name.empty() || Find(name)) {
    Raise(err::kInvalidCall, "The form has a control named " + name + " already, or no name");
  }
  AutomationObject control = SiteControl(ClassName(class_name), container_, saved);
  controls_.emplace_back(name, control);
  return control;
}

AutomationObject Form::Add(std::string_view class_name, const std::string& name) {
  return Site(class_name, name, nullptr);
}

AutomationObject Form::Find(std::string_view name) const {
  for (const auto& [n, control] : controls_) {
    if (EqualsNoCase(n, name)) return control;
  }
  return nullptr;
}

std::string Form::Text() const {
  std::vector<SavedControl> saved;
  for (const auto& [name, control] : controls_) {
    auto shell = std::dynamic_pointer_cast<ControlShell>(control);
    auto face = std::dynamic_pointer_cast<ClassObject>(control);
    saved.push_back({face->class_info().name, name, Container::Save(*shell)});
  }
  return FormText(saved);
}

void Form::Save(const std::string& path) const {
  const std::string text = Text();
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
  if (!file.flush()) Raise(err::kInvalidCall, path + ": can't be written");
}

std::unique_ptr<Form> Form::Load(const std::string& path, bool user_mode) {
  const std::vector<SavedControl> saved =
      ParseFormText(ReadFileBytes(path, kMostFormBytes, "a form file"), path);
  auto form = std::make_unique<Form>(user_mode);
  for (const SavedControl& c : saved) form->Site(c.class_name, c.name, &c.bag);
  return form;
}

}  // namespace qorvel
