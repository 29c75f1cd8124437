#ifndef VEXAKIT_VEXAKIT_H
#define VEXAKIT_VEXAKIT_H

/** Everything that vexakit exports. */

#include "vexakit/conversion.h"
#include "vexakit/export.h"
#include "vexakit/geometry.h"
#include "vexakit/intersection.h"
#include "vexakit/locks.h"
#include "vexakit/strings.h"
#include "vexakit/transform.h"
#include "vexakit/types.h"
#include "vexakit/wkt.h"

#endif
