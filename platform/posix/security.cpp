#include "platform/security.h"

#include <cstdint>
#include <cstdlib>

namespace vexa::platform {

SECURITY_ATTRIBUTES* makeOpenSecurity() noexcept {
    constexpr std::uint32_t kForEverybody = 0666;
    auto* const descriptor =
        static_cast<SECURITY_DESCRIPTOR*>(std::malloc(sizeof(SECURITY_DESCRIPTOR)));
    auto* const attributes =
        static_cast<SECURITY_ATTRIBUTES*>(std::malloc(sizeof(SECURITY_ATTRIBUTES)));
    if (!descriptor || !attributes) {
        std::free(descriptor);
        std::free(attributes);
        return nullptr;
    }
    descriptor->mode = kForEverybody;
    *attributes = {sizeof(SECURITY_ATTRIBUTES), descriptor, 0};
    return attributes;
}

void freeSecurity(SECURITY_ATTRIBUTES* sa) noexcept {
    if (!sa) return;
    std::free(sa->lpSecurityDescriptor);
    std::free(sa);
}

}  // namespace vexa::platform
