#include "platform/posix/ascii_runs.h"
#include "platform/posix/code_page_tables.h"
#include "platform/posix/code_pages.h"
#include "platform/posix/utf8.h"
#include "platform/wide_vectors.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <span>

namespace vexa::platform {

namespace {

using Text = std::span<const char>;
using Room = std::span<VexaWChar>;

unsigned byteAt(Text text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

// A character of a page of one or two bytes.
struct Character {
    unsigned code;
    std::size_t bytes;
};

Character firstOf(const tables::DoubleBytePage& page, Text text) {
    const unsigned first = byteAt(text, 0);
    if (!page.isLead[first] || text.size() == 1 || text[1] == '\0') return {first, 1};
    return {first << 8 | byteAt(text, 1), 2};
}

std::size_t sizeIn(const tables::DoubleBytePage& page, Text text) {
    std::size_t units = 0;
    while (!text.empty()) {
        const std::size_t ascii = asciiRun(text.data(), text.size());
        units += ascii;
        text = text.subspan(ascii);
        if (text.empty()) break;
        text = text.subspan(firstOf(page, text).bytes);
        ++units;
    }
    return units;
}

std::size_t sizeIn(const CodePage& page, Text text) {
    if (page.singleByte) return text.size();
    if (page.doubleByte) return sizeIn(*page.doubleByte, text);
    return wideSize(text);
}

#if VEXAKIT_HAS_WIDE_VECTORS

constexpr std::size_t kUnitsOfVector = 32;
constexpr std::size_t kBytesOfStep = 64;

/// The units of the bytes beyond ASCII: the low ones and the high ones of them, sixty-four each.
struct UpperUnits {
    __m512i low[2];
    __m512i high[2];
};

// A permutation looks at the lowest six bits of a byte.
VEXAKIT_AVX512 [[gnu::always_inline]] inline __m512i unitsOf(const UpperUnits& upper,
                                                             __m256i bytes) {
    const __m512i codes = _mm512_cvtepu8_epi16(bytes);
    const __m512i low = _mm512_permutex2var_epi16(upper.low[0], codes, upper.low[1]);
    const __m512i high = _mm512_permutex2var_epi16(upper.high[0], codes, upper.high[1]);
    const __mmask32 areHigh = _mm512_test_epi16_mask(codes, _mm512_set1_epi16(0x40));
    const __m512i beyond = _mm512_mask_mov_epi16(low, areHigh, high);
    return _mm512_mask_mov_epi16(codes, _mm256_movepi8_mask(bytes), beyond);
}

VEXAKIT_AVX512 void convertByAvx512(const tables::SingleBytePage& page, const char* bytes,
                                    std::size_t count, VexaWChar* units) {
    const std::uint16_t* const table = page.units + 0x80;
    const UpperUnits upper = {
        {_mm512_loadu_si512(table), _mm512_loadu_si512(table + kUnitsOfVector)},
        {_mm512_loadu_si512(table + 2 * kUnitsOfVector),
         _mm512_loadu_si512(table + 3 * kUnitsOfVector)}};
    for (; count >= kBytesOfStep;
         count -= kBytesOfStep, bytes += kBytesOfStep, units += kBytesOfStep) {
        const __m512i both = _mm512_loadu_si512(bytes);
        const __m256i first = _mm512_castsi512_si256(both);
        const __m256i second = _mm512_extracti64x4_epi64(both, 1);
        if (_mm512_movepi8_mask(both) == 0) {
            _mm512_storeu_si512(units, _mm512_cvtepu8_epi16(first));
            _mm512_storeu_si512(units + kUnitsOfVector, _mm512_cvtepu8_epi16(second));
        } else {
            _mm512_storeu_si512(units, unitsOf(upper, first));
            _mm512_storeu_si512(units + kUnitsOfVector, unitsOf(upper, second));
        }
    }
    for (std::size_t done = 0; done < count; done += kUnitsOfVector) {
        const auto most = static_cast<unsigned>(std::min(count - done, kUnitsOfVector));
        const __mmask32 here = _bzhi_u32(~0U, most);
        const __m256i some = _mm256_maskz_loadu_epi8(here, bytes + done);
        _mm512_mask_storeu_epi16(units + done, here, unitsOf(upper, some));
    }
}

#endif

void convertPlainly(const tables::SingleBytePage& page, const char* bytes, std::size_t count,
                    VexaWChar* units) {
    const auto convertAt = [=, &page](std::size_t i) {
        units[i] = page.units[static_cast<unsigned char>(bytes[i])];
    };
    std::size_t i = 0;
    while (count - i >= kAtOnce) {
        i += copyAscii(bytes + i, count - i, units + i);
        if (count - i < kAtOnce) break;
        // Letters of an alphabet stand together, with blanks between them.
        for (std::size_t k = 0; k < kAtOnce; ++k) convertAt(i + k);
        i += kAtOnce;
    }
    for (; i < count; ++i) convertAt(i);
}

std::size_t convert(const tables::SingleBytePage& page, Text text, Room room) {
    const std::size_t count = std::min(text.size(), room.size());
#if VEXAKIT_HAS_WIDE_VECTORS
    if (vectorWidth() == VectorWidth::Avx512) {
        convertByAvx512(page, text.data(), count, room.data());
    } else {
        convertPlainly(page, text.data(), count, room.data());
    }
#else
    convertPlainly(page, text.data(), count, room.data());
#endif
    return count == text.size() ? count : 0;
}

std::size_t convert(const CodePage& doubleByte, Text text, Room room) {
    const tables::DoubleBytePage& page = *doubleByte.doubleByte;
    std::size_t used = 0;
    while (!text.empty()) {
        const std::size_t left = room.size() - used;
        if (left == 0) return 0;
        if (isAscii(text[0])) {
            const std::size_t ascii =
                copyAscii(text.data(), std::min(text.size(), left), &room[used]);
            used += ascii;
            text = text.subspan(ascii);
            continue;
        }
        const Character character = firstOf(page, text);
        room[used++] = unitOfCode(doubleByte, character.code);
        text = text.subspan(character.bytes);
    }
    return used;
}

std::size_t convertTo(const CodePage& page, Text text, Room room) {
    if (page.singleByte) return convert(*page.singleByte, text, room);
    if (page.doubleByte) return convert(page, text, room);
    return utf8ToWide(text, room);
}

}  // namespace

int codePageToWide(const CodePage& page, const char* source, int length, VexaWChar* out,
                   int room) noexcept {
    if (length < -1 || room < 0) return 0;

    const std::size_t bytes =
        length == -1 ? std::strlen(source) + 1 : static_cast<std::size_t>(length);
    const Text text{source, bytes};
    const std::size_t units = room == 0
                                  ? sizeIn(page, text)
                                  : convertTo(page, text, {out, static_cast<std::size_t>(room)});
    return units <= std::numeric_limits<int>::max() ? static_cast<int>(units) : 0;
}

}  // namespace vexa::platform
