#ifndef QORVEL_SERVER_FORM_H_
#define QORVEL_SERVER_FORM_H_

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qorvel/frame/control_shell.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// A form that holds named controls of the library, in run mode or in design mode (the ambient
// UserMode of its container), saved to a text file and loaded back from one.
class Form {
 public:
  explicit Form(bool user_mode = true) : container_(user_mode) {}
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  Container& container() { return container_; }
  // A new control of `class_name` ("ValueBox", or its programmatic name "QorvelOLE.ValueBox")
  // named `name` on the form. 5 for a name in use or not a name, 429 for a class not built.
  AutomationObject Add(std::string_view class_name, const std::string& name);
  AutomationObject Find(std::string_view name) const;  // any case; nullptr for none
  const std::vector<std::pair<std::string, AutomationObject>>& controls() const {
    return controls_;
  }

  // The form as text: every control's class, name and saved state (WriteProperties).
  std::string Text() const;
  void Save(const std::string& path) const;
  // A form from a file, each control sited from its saved state with ReadProperties. 53 for a
  // file that isn't there; 5, naming the file and the line, for one that isn't a form.
  static std::unique_ptr<Form> Load(const std::string& path, bool user_mode = true);

 private:
  AutomationObject Site(std::string_view class_name, const std::string& name,
                        const PropertyBag* saved);

  Container container_;  // first, so it outlives the controls
  std::vector<std::pair<std::string, AutomationObject>> controls_;
};

}  // namespace qorvel

#endif  // QORVEL_SERVER_FORM_H_
