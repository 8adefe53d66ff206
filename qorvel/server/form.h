#ifndef QORVEL_SERVER_FORM_H_
#define QORVEL_SERVER_FORM_H_

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "qorvel/frame/control_shell.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// A form that holds named controls of the library, in run mode or in design mode (the ambient
// UserMode of its container), saved to a text file and loaded back from one. Its controls keep
// its container alive, so a script may hold a control after letting the form go.
class Form {
 public:
  explicit Form(bool user_mode = true) : container_(std::make_shared<Container>(user_mode)) {}
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  Container& container() { return *container_; }
  // A new control of `class_name` ("ValueBox", or its programmatic name "QorvelOLE.ValueBox")
  // named `name` on the form. 5 for a name in use (any case) or not a name (a letter or "_",
  // then letters, digits and "_"), 429 for a class not built.
  AutomationObject Add(std::string_view class_name, const std::string& name);
  AutomationObject Find(std::string_view name) const;  // any case; nullptr for none
  const std::vector<std::pair<std::string, AutomationObject>>& controls() const {
    return controls_;
  }

  // The form as text: every control's class, name and saved state (WriteProperties).
  std::string Text() const;
  // Writes the file whole or not at all (5 naming the file), and clears the container's record
  // of changed properties.
  void Save(const std::string& path);
  // A form from a file, each control sited from its saved state with ReadProperties. The whole
  // file is checked before any control is made, so a refused file has no effect: 53 for a file
  // that isn't there; 5 for one that isn't a form, 429 for a class that isn't built, and 13, 6
  // or 94 for a saved property its control can't read, each naming the file and the line.
  static std::unique_ptr<Form> Load(const std::string& path, bool user_mode = true);
  // The same from the text of a form file, with `source` named in its errors.
  static std::unique_ptr<Form> FromText(std::string_view text, const std::string& source,
                                        bool user_mode = true);

 private:
  AutomationObject Site(std::string_view class_name, const std::string& name,
                        const PropertyBag* saved);

  std::shared_ptr<Container> container_;
  std::vector<std::pair<std::string, AutomationObject>> controls_;
  std::unordered_map<std::string, size_t> index_;  // upper-cased name to its place in controls_
};

}  // namespace qorvel

#endif  // QORVEL_SERVER_FORM_H_
