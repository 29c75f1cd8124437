#pragma once

#include "bench/wide_text.h"

#include <cstddef>

namespace vexa::bench {

/// A conversion of zero-terminated text into room that fits it.
template <class From, class To>
using Convert = bool (*)(const From* source, To* out, std::size_t room);

// Null where ICU was not there when this was built.
Convert<VexaWChar, char> icuWideToUtf8();
Convert<char, VexaWChar> icuUtf8ToWide();
Convert<VexaWChar, char> icuWideToPage();
Convert<char, VexaWChar> icuPageToWide();

}  // namespace vexa::bench
