#ifndef QORVEL_SESSION_ZEBRIN_FACE_H_
#define QORVEL_SESSION_ZEBRIN_FACE_H_

#include "qorvel/platform/variant.h"

namespace qorvel {

// A new Zebrin control behind the dispatch face, sited in the run-time container: Initialize and
// Resize have run, and Terminate runs when the last reference goes.
AutomationObject NewZebrinObject();

}  // namespace qorvel

#endif  // QORVEL_SESSION_ZEBRIN_FACE_H_
