#pragma once

namespace vexa::platform {

/// The number of the code page that fits the environment's locale, as three of its variables give
/// it: the first that is set and not empty counts, and of it the charset alone ("ja_JP.EUC-JP"
/// has "EUC-JP", "de_DE@euro" none). Case and punctuation of the charset's name are ignored.
///
/// @param all    `LC_ALL`, or null where it is not set
/// @param ctype  `LC_CTYPE`, likewise
/// @param lang   `LANG`, likewise
/// @return the page of that charset; 1252 where there is none or its name is unknown
unsigned codePageOfLocale(const char* all, const char* ctype, const char* lang) noexcept;

}  // namespace vexa::platform
