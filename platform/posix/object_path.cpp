#include "platform/posix/object_path.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sys/stat.h>

namespace vexa::platform {

namespace {

// What stands as it is. A "~" comes from no unit: it marks names that are cut.
bool isPlain(VexaWChar unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') ||
           (unit >= '0' && unit <= '9') || unit == '_' || unit == '-';
}

constexpr std::size_t kEscapeSize = 5;  // "%" and four digits
constexpr std::size_t kLongestEscaped = 200;
constexpr std::size_t kKeptOfLongName = 100;

std::size_t escapedSize(VexaWChar unit) {
    return isPlain(unit) ? 1 : kEscapeSize;
}

std::size_t escapedSize(std::basic_string_view<VexaWChar> name) {
    std::size_t size = 0;
    for (const VexaWChar unit : name) size += escapedSize(unit);
    return size;
}

std::optional<unsigned long long> pidNamespace() {
    struct stat space {};
    if (stat("/proc/self/ns/pid", &space) != 0) return std::nullopt;
    return space.st_ino;
}

// FNV-1a of 128 bits, as Fowler, Noll and Vo give its numbers.
class NameHash {
public:
    void add(VexaWChar unit) {
        addByte(static_cast<std::uint8_t>(unit));
        addByte(static_cast<std::uint8_t>(unit >> 8));
    }

    [[nodiscard]] std::uint64_t high() const { return static_cast<std::uint64_t>(hash_ >> 64); }
    [[nodiscard]] std::uint64_t low() const { return static_cast<std::uint64_t>(hash_); }

private:
    __extension__ using Word = unsigned __int128;

    static constexpr Word word(std::uint64_t high, std::uint64_t low) {
        return Word{high} << 64 | low;
    }

    void addByte(std::uint8_t byte) {
        constexpr Word kPrime = word(0x0000000001000000, 0x000000000000013B);
        hash_ = (hash_ ^ byte) * kPrime;
    }

    Word hash_ = word(0x6C62272E07BB0142, 0x62B821756295C58D);
};

}  // namespace

void ObjectPath::add(std::string_view text) noexcept {
    for (const char character : text) add(character);
}

void ObjectPath::addHex(unsigned long long number, int digits) noexcept {
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) add(kDigits[number >> shift & 15]);
}

void ObjectPath::addEscaped(VexaWChar unit) noexcept {
    if (isPlain(unit)) {
        add(static_cast<char>(unit));
        return;
    }
    add('%');
    addHex(unit, 4);
}

std::optional<ObjectPath> ObjectPath::ofName(std::basic_string_view<VexaWChar> name) noexcept {
    if (std::find(name.begin(), name.end(), VexaWChar{'\\'}) != name.end()) return std::nullopt;
    // A name without its namespace would be another object's.
    const std::optional<unsigned long long> space = pidNamespace();
    if (!space) return std::nullopt;

    ObjectPath path;
    path.add(kSharedMemoryFolder);
    path.add("/vexakit-");
    path.addHex(*space, 16);
    path.add('-');

    const bool isLong = escapedSize(name) > kLongestEscaped;
    const std::size_t room = isLong ? kKeptOfLongName : kLongestEscaped;
    NameHash hash;
    std::size_t used = 0;
    for (const VexaWChar unit : name) {
        hash.add(unit);
        used += escapedSize(unit);
        if (used <= room) path.addEscaped(unit);
    }
    if (isLong) {
        path.add('~');
        path.addHex(hash.high(), 16);
        path.addHex(hash.low(), 16);
    }
    return path;
}

}  // namespace vexa::platform
