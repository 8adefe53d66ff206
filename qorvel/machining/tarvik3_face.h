#ifndef QORVEL_MACHINING_TARVIK3_FACE_H_
#define QORVEL_MACHINING_TARVIK3_FACE_H_

#include "qorvel/platform/variant.h"

namespace qorvel {

// A new Tarvik3 control behind the dispatch face, sited in the run-time container: Initialize and
// Resize have run, and Terminate runs when the last reference goes.
AutomationObject NewTarvik3Object();

}  // namespace qorvel

#endif  // QORVEL_MACHINING_TARVIK3_FACE_H_
