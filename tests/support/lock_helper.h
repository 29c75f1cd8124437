#pragma once

#include "tests/support/processes.h"
#include "tests/support/wide_text.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vexa::test {

/// A wide text in one word of ASCII: "u" and four digits for each unit.
inline std::string inHex(const WideString& text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string hex = "u";
    for (const VexaWChar unit : text) {
        for (int shift = 12; shift >= 0; shift -= 4) hex += kDigits[unit >> shift & 15];
    }
    return hex;
}

inline WideString fromHex(std::string_view hex) {
    WideString text;
    for (std::size_t at = 1; at + 4 <= hex.size(); at += 4) {
        text += static_cast<VexaWChar>(std::stoul(std::string{hex.substr(at, 4)}, nullptr, 16));
    }
    return text;
}

/// Another process with a lock, which does with it what it is told: see helpers/lock_helper.cpp.
class LockHelper {
public:
    LockHelper() : process_("vexakit_lock_helper") {}
    /// With a lock of a kind, "mutex" or "interprocess".
    LockHelper(const std::string& kind, const WideString& name) : LockHelper() {
        tell("make " + kind + ' ' + inHex(name));
        isMade_ = answer() == "made";
    }

    [[nodiscard]] bool isMade() const { return isMade_; }
    [[nodiscard]] std::uint32_t id() const { return process_.id(); }

    void tell(const std::string& command) { process_.send(command); }
    /// What it answers in time; nothing where it does not.
    std::string answer(Clock::duration patience = kPatience) {
        return process_.receive(patience).value_or("nothing");
    }
    std::string ask(const std::string& command) {
        tell(command);
        return answer();
    }

    /// Whether it still does what it was told last; an answer stays to be had.
    bool isBusy() {
        using namespace std::chrono_literals;
        return answer(50ms) == "nothing";
    }

    void kill() { process_.kill(); }
    std::optional<int> end() { return process_.end(); }

private:
    ChildProcess process_;
    bool isMade_ = false;
};

}  // namespace vexa::test
