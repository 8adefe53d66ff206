#ifndef QORVEL_SESSION_ZEBRIN_FACE_H_
#define QORVEL_SESSION_ZEBRIN_FACE_H_

#include "qorvel/platform/variant.h"

namespace qorvel {

// A new Zebrin control behind the dispatch face: initialised now, terminated when the last
// reference goes.
AutomationObject NewZebrinObject();

}  // namespace qorvel

#endif  // QORVEL_SESSION_ZEBRIN_FACE_H_
