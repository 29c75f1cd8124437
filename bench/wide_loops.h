#pragma once

#include <cstddef>

namespace vexa::bench {

/// The sum of the numbers, as fast as the processor's widest vectors can load and add them. Not in
/// order.
double wideSum(const double* numbers, std::size_t count);

/// Adds to each number in place, by the widest vectors.
void wideAdd(double* numbers, std::size_t count, double addend);

}  // namespace vexa::bench
