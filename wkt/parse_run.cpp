#include "wkt/parse_run.h"

#include <algorithm>
#include <cstdio>

namespace vexa {

void ParseRun::report(const char* message) {
    const std::string_view token = scanner.tokenText();
    const auto quoted = static_cast<int>(std::min(token.size(), errorText.size()));
    std::snprintf(errorText.data(), errorText.size(), "%s, at or near \"%.*s\"\n", message, quoted,
                  token.data());
}

}  // namespace vexa
