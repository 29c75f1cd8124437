// Formats of one directive between two texts, with an argument of its kind, into rooms of any size, in
// both families.
#include "fuzz/input.h"
#include "vexakit/strings.h"

#include <limits>

namespace vexa::fuzz {

namespace {

struct Directive {
    std::string text;
    int stars = 0;
    std::string kind;
};

std::string takeFlags(Input& input) {
    constexpr char kFlags[] = "-+ #0";
    std::string flags;
    for (int left = take(input, 0, 3); left > 0; --left) flags += kFlags[take(input, 0, 4)];
    return flags;
}

Directive takeDirective(Input& input) {
    static constexpr const char* kKinds[] = {"d",   "i",    "u",  "o",  "x",   "X",    "c",  "C",
                                             "lc",  "hc",   "s",  "S",  "hs",  "ls",   "ws", "p",
                                             "lld", "I64u", "zx", "hd", "hhu", "I32d", "f",  "e",
                                             "G",   "a",    "ld", "td", "y",   "%",    "n",  ""};
    Directive directive;
    directive.text = "%" + takeFlags(input);
    const auto addNumber = [&] {
        if (input.ConsumeBool()) {
            directive.text += '*';
            ++directive.stars;
        } else {
            directive.text += std::to_string(take(input, 0, 40));
        }
    };
    if (input.ConsumeBool()) addNumber();
    if (input.ConsumeBool()) {
        directive.text += '.';
        if (input.ConsumeBool()) addNumber();
    }
    directive.kind = kKinds[take(input, 0, static_cast<int>(std::size(kKinds)) - 1)];
    directive.text += directive.kind;
    return directive;
}

WideString widened(const std::string& text) {
    WideString result;
    for (const char c : text) result += static_cast<VexaWChar>(static_cast<unsigned char>(c));
    return result;
}

// What a format gives in a room: the status, and all cells.
template <typename Character>
struct Printed {
    std::uint32_t status;
    std::basic_string<Character> cells;
};

template <typename Character, typename... Values>
Printed<Character> print(std::size_t size, const std::basic_string<Character>& format,
                         Values... values) {
    ExactRoom<Character> formatRoom(format);
    ExactRoom<Character> room(size);
    Printed<Character> printed{};
    if constexpr (sizeof(Character) == 1) {
        printed.status = string_safeSprintfA(room.data(), size, formatRoom.data(), values...);
    } else {
        printed.status = string_safeSprintfW(room.data(), size, formatRoom.data(), values...);
    }
    printed.cells.assign(room.data(), size);
    return printed;
}

template <typename Character, typename... Values>
void checkRooms(const std::basic_string<Character>& format, std::size_t size, Values... values) {
    constexpr std::size_t kPlenty = 4000;
    const Printed<Character> whole = print(kPlenty, format, values...);
    const Printed<Character> part = print(size, format, values...);
    if (size == 0) {
        require(part.status == VEXA_FAILURE, "no room is a failure");
    } else if (whole.status == VEXA_SUCCESS) {
        // A zero may be printed, so the text's size is not known; what was kept is the same.
        const std::size_t kept = size - 1;
        const std::size_t text = whole.cells.find_last_not_of(Character{0}) + 1;
        require(part.cells.compare(0, kept, whole.cells, 0, kept) == 0, "the same text, cut");
        require(text <= kept || part.status == VEXA_FAILURE, "what does not fit fails");
    }
}

template <typename... Values>
void checkBoth(const std::string& format, std::size_t size, Values... values) {
    checkRooms<char>(format, size, values...);
    checkRooms<VexaWChar>(widened(format), size, values...);
}

template <typename Value>
void checkWithStars(const Directive& directive, const std::string& format, std::size_t size,
                    int first, int second, Value value) {
    if (directive.stars == 0) checkBoth(format, size, value);
    if (directive.stars == 1) checkBoth(format, size, first, value);
    if (directive.stars == 2) checkBoth(format, size, first, second, value);
}

// Whether the directive takes wide text in a family.
bool takesWide(const std::string& kind, bool isWideFamily) {
    if (kind[0] == 'h') return false;
    if (kind[0] == 'l' || kind[0] == 'w') return true;
    return isWideFamily == (kind == "s");
}

template <typename Value>
void checkText(const Directive& directive, const std::string& format, std::size_t size, int first,
               int second, bool isWideFamily, Value value) {
    const auto check = [&](auto... values) {
        if (isWideFamily) {
            checkRooms<VexaWChar>(widened(format), size, values...);
        } else {
            checkRooms<char>(format, size, values...);
        }
    };
    if (directive.stars == 0) check(value);
    if (directive.stars == 1) check(first, value);
    if (directive.stars == 2) check(first, second, value);
}

}  // namespace

}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    Input input(data, size);
    const Directive directive = takeDirective(input);
    const auto room = input.ConsumeIntegralInRange<std::size_t>(0, 60);
    const int first = take(input, -40, 40);
    const int second = take(input, -40, 40);
    const auto bits = input.ConsumeIntegral<std::int64_t>();
    const double number = input.ConsumeBool() ? input.ConsumeFloatingPoint<double>()
                                              : std::numeric_limits<double>::infinity();
    const std::string narrow = takeBytes(input, 30);
    const WideString wide = takeUnits(input, 30);
    const std::string format = "a" + directive.text + "b";

    const std::string& kind = directive.kind;
    if (!kind.empty() && kind.find_first_of("sS") != std::string::npos) {
        ExactRoom<char> narrowRoom(narrow);
        ExactRoom<VexaWChar> wideRoom(wide);
        for (const bool isWideFamily : {false, true}) {
            if (takesWide(kind, isWideFamily)) {
                checkText(directive, format, room, first, second, isWideFamily, wideRoom.data());
            } else {
                checkText(directive, format, room, first, second, isWideFamily, narrowRoom.data());
            }
        }
    } else if (!kind.empty() && kind.find_first_of("feGa") != std::string::npos) {
        checkWithStars(directive, format, room, first, second, number);
    } else if (kind == "lld" || kind == "I64u" || kind == "zx" || kind == "td" || kind == "p") {
        checkWithStars(directive, format, room, first, second, bits);
    } else {
        checkWithStars(directive, format, room, first, second, static_cast<int>(bits));
    }
    return 0;
}
