#pragma once

#include "geometry/block.h"

#include <string_view>

namespace vexa {

/// Reads a text that holds to the grammar and has nothing out of the ordinary in it, in one pass and
/// straight into its geometry: what the scanner and the grammar make of it, several times faster.
///
/// @param text  up to its terminator, which has to be there
/// @return null where the text has to be read by the scanner, whether it is well-formed or not, and
///         where memory is lacking; nothing has happened then
Block readPlainText(std::string_view text);

}  // namespace vexa
