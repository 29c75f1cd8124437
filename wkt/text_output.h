#pragma once

#include "vexakit/types.h"

#include <cstdint>
#include <string_view>

namespace vexa {

/// The caller's array while a text is written into it. The room is counted, never an end address:
/// it may be anything up to the largest 64-bit number.
class TextOutput {
public:
    TextOutput(VexaWChar* out, std::int64_t capacity) : out_(out), room_(capacity) {}

    std::int64_t written() const { return written_; }
    std::int64_t room() const { return room_; }
    VexaWChar* position() const { return out_ + written_; }

    /// Copies a piece and a terminator behind it. The piece has to fit; the terminator is written
    /// even where the piece takes the last of the room.
    void put(std::string_view piece) {
        VexaWChar* cell = position();
        for (const char character : piece) *cell++ = static_cast<VexaWChar>(character);
        *cell = 0;
        advance(static_cast<std::int64_t>(piece.size()));
    }

    /// Counts what was written behind the position.
    void advance(std::int64_t count) {
        written_ += count;
        room_ -= count;
    }

private:
    VexaWChar* out_;
    std::int64_t written_ = 0;
    std::int64_t room_;
};

}  // namespace vexa
