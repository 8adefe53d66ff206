#ifndef QORVEL_FRAME_FORM_FILE_H_
#define QORVEL_FRAME_FORM_FILE_H_

#include <string>
#include <string_view>
#include <vector>

#include "qorvel/frame/property_bag.h"

namespace qorvel {

// One control as a form file holds it: its class, its name on the form and its saved state,
// with the lines they came from, so what is checked later still names its line.
struct SavedControl {
  std::string class_name;
  std::string name;
  PropertyBag bag;
  int line = 0;                          // the Begin line
  std::vector<int> property_lines = {};  // the line of each entry of `bag`, in its order
};

// Whether `text` can name a control or a property in a form: a letter or "_", then letters,
// digits and "_" (ASCII), as a form file writes and reads names.
bool IsFormName(std::string_view text);

// A form as readable text: a header line, then a block a control, one line a property with its
// type:
//
//   QorvelOLE form 1
//   Begin ValueBox Amount
//     Value = Double 2.5
//     DecimalPlaces = Integer 3
//     ReadOnly = Boolean -1
//   End
//
// Types: Integer, Long, Double (the shortest text that reads back exactly, with the point
// whatever the locale), Boolean (the 16-bit value), String (in double quotes, with \" \\ \r
// \n \t), Empty and Null. Blank lines and lines starting with ';' are comments.
std::string FormText(const std::vector<SavedControl>& controls);
// Error 5 naming `source` and the line for text that isn't such a form; nothing is returned.
// Control names are unique without regard to case. Near-linear in the size of the text.
std::vector<SavedControl> ParseFormText(std::string_view text, std::string_view source);

}  // namespace qorvel

#endif  // QORVEL_FRAME_FORM_FILE_H_
