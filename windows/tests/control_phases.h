#ifndef WINDOWS_TESTS_CONTROL_PHASES_H_
#define WINDOWS_TESTS_CONTROL_PHASES_H_

// The parts of control_host, each a group of checks that throws CheckFailed at its first
// difference and releases everything it made on the way out.

#include "windows/tests/atl_host.h"
#include "windows/tests/control_log.h"
#include "windows/tests/forms.h"

namespace qorvel::win::testing {

// The program's own pieces, against Wine alone: ATL hosting one of Wine's controls, typing and
// pasting into a plain EDIT, the property bag.
// The six controls sited by ATL in one form at run time; a value typed into the ValueBox.
void CheckRunMode(const AtlHost& atl, const ControlLog& log, const Screens& screens);
// The ValueBox's key table, in a region whose decimal symbol is the point and in one with the
// comma; Backspace, paste and focus.
void CheckValueBoxKeys(const AtlHost& atl);
// The ValueBox saved into a property bag and loaded from it.
void CheckPersistence(const ControlLog& log);
// The six controls in a form designer of our own: ambient UserMode false, their pictures.
void CheckDesignMode(const Screens& screens);
// One key typed into the ValueBox against one typed into a plain EDIT.
void MeasureKeyCost(const AtlHost& atl, int keys);

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_CONTROL_PHASES_H_
