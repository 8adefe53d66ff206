// Form files, as a user's editor or a broken disk may leave them, loaded into a form.
// Properties: a refused file raises only the errors a form file may give (5, and 6, 13, 94 or
// 429 for what its controls can't read or make) and leaves no trace: no live object, nothing
// written to the registry or the clipboard, no message box. A file that loads, saved and loaded
// again, gives the same controls with the same properties and the same text.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/property.h"
#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/server/form.h"

namespace qorvel {
namespace {

using fuzz::Expect;
using fuzz::RunAllowing;

const std::vector<int32_t> kFormErrors = {5, 6, 13, 94, 429};

// The classes and names of a form's controls, in order.
std::string Outline(const Form& form) {
  std::string outline;
  for (const auto& [name, control] : form.controls()) {
    outline += std::dynamic_pointer_cast<ClassObject>(control)->class_info().name + " " + name;
    outline += "\n";
  }
  return outline;
}

}  // namespace
}  // namespace qorvel

// The first byte picks the region and the mode, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qorvel;
  if (size == 0) return 0;
  ScopedEnv env;
  SetDecimalSymbol(env.env().registry(), data[0] & 1 ? "," : ".");
  const bool user_mode = (data[0] & 2) != 0;
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  const uint64_t generation = env.env().portable().registry().generation();
  const int live = LiveObjects();

  std::unique_ptr<Form> form;
  if (!RunAllowing(kFormErrors, [&] { form = Form::FromText(text, "fuzz.frm", user_mode); })) {
    Expect(LiveObjects() == live, "a refused file leaves no live object");
    Expect(env.env().portable().registry().generation() == generation,
           "a refused file writes no registry");
    Expect(env.env().clipboard().GetText().empty(), "a refused file leaves the clipboard alone");
    Expect(env.env().messages().shown().empty(), "a refused file shows no box");
    return 0;
  }
  const std::string saved = form->Text();
  std::unique_ptr<Form> again = Form::FromText(saved, "saved.frm", user_mode);
  Expect(Outline(*again) == Outline(*form), "a saved form loads the same controls");
  Expect(again->Text() == saved, "a saved form saves the same text again");
  form.reset();
  again.reset();
  Expect(LiveObjects() == live, "a dropped form releases its controls");
  return 0;
}
