#pragma once

#include "geometry/intersection/pair_tests.h"

namespace vexa {

/// Whether some point of the first has all its coordinates equal to those of some point of the second:
/// zeros of both signs are equal, what is not a number equals nothing. Where memory is lacking every
/// pair is compared.
bool anyEqual(const Points& first, const Points& second);

}  // namespace vexa
