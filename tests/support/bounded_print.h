#pragma once

#include "tests/support/conversion_check.h"
#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace vexa::test {

/// The bounded prints of the two families, under one name each. Formats of the tests are ASCII.
struct NarrowPrint {
    using Character = char;
    /// What `%S` takes.
    using Other = VexaWChar;

    static std::string text(std::string_view ascii) { return std::string(ascii); }
    static WideString other(std::string_view ascii) { return wide(ascii); }

    template <class... Values>
    static std::uint32_t print(Character* destination, std::size_t size, const Character* format,
                               Values... values) {
        return string_safeSprintfA(destination, size, format, values...);
    }
};

struct WidePrint {
    using Character = VexaWChar;
    using Other = char;

    static WideString text(std::string_view ascii) { return wide(ascii); }
    static std::string other(std::string_view ascii) { return std::string(ascii); }

    template <class... Values>
    static std::uint32_t print(Character* destination, std::size_t size, const Character* format,
                               Values... values) {
        return string_safeSprintfW(destination, size, format, values...);
    }
};

/// What a family prints, with room to spare, up to the first zero; or why there is none.
template <class Family, class... Values>
std::string printed(std::string_view format, Values... values) {
    constexpr std::size_t kRoom = 4096;
    GuardedRoom<typename Family::Character> room(kRoom);
    const ExactText exactFormat(Family::text(format));

    if (Family::print(room.data(), kRoom, exactFormat.get(), values...) != kSuccess) {
        return "failed";
    }
    if (!room.areGuardsUntouched()) return "written outside the room";
    if (room.cells().back() != 0) return "the last cell is not zero";

    std::string text;
    for (std::size_t index = 0; room.data()[index] != 0; ++index) {
        using Unsigned = std::make_unsigned_t<std::remove_cvref_t<decltype(room.data()[index])>>;
        const std::uint32_t character = static_cast<Unsigned>(room.data()[index]);
        if (sizeof room.data()[index] > 1 && character > 0xFF) return "beyond a byte";
        text += static_cast<char>(character);
    }
    return text;
}

}  // namespace vexa::test
