#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace vexa {

__extension__ typedef unsigned __int128 UInt128;

/// The leading 128 bits of a power of ten, cut off: `high` has its top bit set, and the power is at
/// least (high 2^64 + low) 2^exponent and less than one unit of `low` above it.
struct PowerOfTen {
    std::uint64_t high;
    std::uint64_t low;
    int exponent;
};

/// The powers at hand: those from 10^0 on are exact, and a power of five of the others fits 64 bits.
constexpr int kLeastPowerOfTen = -27;
constexpr int kGreatestPowerOfTen = 55;

namespace powers_of_ten {

constexpr PowerOfTen of(UInt128 bits, int exponent) {
    return {static_cast<std::uint64_t>(bits >> 64), static_cast<std::uint64_t>(bits), exponent};
}

/// 10^n = 5^n 2^n.
constexpr PowerOfTen positive(int n) {
    UInt128 bits = 1;
    for (int i = 0; i < n; ++i) bits *= 5;
    int shift = 0;
    for (; bits >> 127 == 0; ++shift) bits <<= 1;
    return of(bits, n - shift);
}

/// 10^-n, by long division.
constexpr PowerOfTen reciprocal(int n) {
    std::uint64_t divisor = 1;
    for (int i = 0; i < n; ++i) divisor *= 5;

    // The first bit of the quotient is 1; 127 more follow.
    const int shift = static_cast<int>(std::bit_width(divisor - 1));
    UInt128 remainder = UInt128{1} << shift;
    UInt128 quotient = 0;
    for (int i = 0; i < 128; ++i) {
        quotient <<= 1;
        if (remainder >= divisor) {
            remainder -= divisor;
            quotient |= 1;
        }
        remainder <<= 1;
    }
    return of(quotient, -127 - shift - n);
}

inline constexpr auto kTable = [] {
    std::array<PowerOfTen, kGreatestPowerOfTen - kLeastPowerOfTen + 1> powers{};
    for (int n = kLeastPowerOfTen; n <= kGreatestPowerOfTen; ++n) {
        powers[static_cast<std::size_t>(n - kLeastPowerOfTen)] =
            n < 0 ? reciprocal(-n) : positive(n);
    }
    return powers;
}();

}  // namespace powers_of_ten

constexpr const PowerOfTen& powerOfTen(int n) {
    return powers_of_ten::kTable[static_cast<std::size_t>(n - kLeastPowerOfTen)];
}

/// 10^n for every n that an integer of 64 bits can be.
inline constexpr std::uint64_t kIntegerPowersOfTen[] = {1,
                                                        10,
                                                        100,
                                                        1'000,
                                                        10'000,
                                                        100'000,
                                                        1'000'000,
                                                        10'000'000,
                                                        100'000'000,
                                                        1'000'000'000,
                                                        10'000'000'000,
                                                        100'000'000'000,
                                                        1'000'000'000'000,
                                                        10'000'000'000'000,
                                                        100'000'000'000'000,
                                                        1'000'000'000'000'000,
                                                        10'000'000'000'000'000,
                                                        100'000'000'000'000'000,
                                                        1'000'000'000'000'000'000,
                                                        10'000'000'000'000'000'000U};

}  // namespace vexa
