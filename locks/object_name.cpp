#include "locks/object_name.h"

#include "vexakit/strings.h"

#include <algorithm>
#include <cstring>

namespace vexa {

ObjectName formatObjectName(const char* format, const VexaWChar* name) noexcept {
    std::array<VexaWChar, 32> wideFormat{};
    std::copy_n(format, std::min(std::strlen(format), wideFormat.size() - 1), wideFormat.begin());

    // A text that is cut gets no terminator: it is there already.
    ObjectName formatted{};
    string_safeSprintfW(formatted.data(), formatted.size(), wideFormat.data(), name);
    return formatted;
}

}  // namespace vexa
