#include "platform/security.h"

#include <windows.h>

namespace vexa::platform {

namespace {

template <typename Structure>
Structure* allocateZeroed(SIZE_T size) {
    return static_cast<Structure*>(LocalAlloc(LPTR, size));
}

}  // namespace

SECURITY_ATTRIBUTES* makeOpenSecurity() noexcept {
    auto* const descriptor = allocateZeroed<SECURITY_DESCRIPTOR>(SECURITY_DESCRIPTOR_MIN_LENGTH);
    auto* const attributes = allocateZeroed<SECURITY_ATTRIBUTES>(sizeof(SECURITY_ATTRIBUTES));
    // A list of who may do what that is present and null lets everybody do everything.
    if (!descriptor || !attributes ||
        !InitializeSecurityDescriptor(descriptor, SECURITY_DESCRIPTOR_REVISION) ||
        !SetSecurityDescriptorDacl(descriptor, TRUE, nullptr, FALSE)) {
        LocalFree(descriptor);
        LocalFree(attributes);
        return nullptr;
    }
    attributes->nLength = sizeof(SECURITY_ATTRIBUTES);
    attributes->lpSecurityDescriptor = descriptor;
    attributes->bInheritHandle = FALSE;
    return attributes;
}

void freeSecurity(SECURITY_ATTRIBUTES* sa) noexcept {
    if (!sa) return;
    LocalFree(sa->lpSecurityDescriptor);
    LocalFree(sa);
}

}  // namespace vexa::platform
