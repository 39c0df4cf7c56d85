#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <system_error>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace marlowen {

/// Numbers in the text of a mesh. The text is a run of whole tokens that ends in white space, so
/// that reading a number needs no test for its end, and textSpareBytes behind its end may be read:
/// characters are looked at many at a time.

/// Room for a look at 32 characters from behind the last token.
inline constexpr size_t textSpareBytes = 40;

inline bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

inline bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

inline bool endsToken(char c)
{
    return isBlank(c) || isLineEnd(c);
}

inline const char *skipBlanks(const char *at)
{
    while (isBlank(*at))
        ++at;
    return at;
}

inline const char *tokenEnd(const char *at)
{
    while (!endsToken(*at))
        ++at;
    return at;
}

/// Any number, the whole token: decimal with an optional sign and exponent, "inf" or "nan". A
/// number too large for a double becomes infinite, one too small 0. False when it is not a number.
bool parseNumber(std::string_view token, double &value);

/// Eight characters at a time; the first is the lowest byte.
class EightCharacters
{
public:
    static_assert(std::endian::native == std::endian::little, "the first is the lowest byte");

    explicit EightCharacters(const char *at) { std::memcpy(&m_bytes, at, sizeof(m_bytes)); }

    /// How many of the first ones are decimal digits, 0 to 8.
    unsigned digits() const
    {
        // A digit has the upper half 3, also after 6 is added to it. What an addition carries into
        // the next character does no harm: there are no more digits to count then.
        const uint64_t others =
            ((m_bytes & halves) ^ threes) | (((m_bytes + 0x0606060606060606) & halves) ^ threes);
        return others ? static_cast<unsigned>(std::countr_zero(others)) / 8 : 8;
    }

    /// The number that the first `count` digits make, 1 to 8.
    uint64_t value(unsigned count) const
    {
        // Digits that are missing before the number are 0. Then neighbours are joined: digits to
        // pairs, pairs to fours, fours to all eight.
        uint64_t sum = (m_bytes << (64 - 8 * count)) & 0x0F0F0F0F0F0F0F0F;
        sum = ((sum * (1 + (10 << 8))) >> 8) & 0x00FF00FF00FF00FF;
        sum = ((sum * (1 + (100 << 16))) >> 16) & 0x0000FFFF0000FFFF;
        return (sum * (1 + (uint64_t{10000} << 32))) >> 32;
    }

    /// Whether a line feed or a carriage return is among them.
    bool endsLine() const { return hasZero(m_bytes ^ lineFeeds) || hasZero(m_bytes ^ returns); }

private:
    static constexpr uint64_t ones = 0x0101010101010101;
    static constexpr uint64_t halves = 0xF0 * ones;
    static constexpr uint64_t threes = 0x30 * ones;
    static constexpr uint64_t lineFeeds = '\n' * ones;
    static constexpr uint64_t returns = '\r' * ones;

    static bool hasZero(uint64_t bytes) { return ((bytes - ones) & ~bytes & (0x80 * ones)) != 0; }

    uint64_t m_bytes;
};

/// Where the line ends that `at` lies in.
inline const char *lineEnd(const char *at)
{
    while (!EightCharacters(at).endsLine())
        at += 8;
    while (!isLineEnd(*at))
        ++at;
    return at;
}

/// Which of the 32 characters at `at` are no decimal digits: a bit each, the first is the lowest.
inline uint32_t otherThanDigits(const char *at)
{
#ifdef __SSE2__
    const auto sixteen = [](const char *first) {
        const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i *>(first));
        const __m128i below = _mm_cmplt_epi8(characters, _mm_set1_epi8('0'));
        const __m128i above = _mm_cmpgt_epi8(characters, _mm_set1_epi8('9'));
        return static_cast<uint32_t>(_mm_movemask_epi8(_mm_or_si128(below, above)));
    };
    return sixteen(at) | sixteen(at + 16) << 16;
#else
    uint32_t others = 0;
    for (unsigned i = 0; i < 32; ++i)
        others |= static_cast<uint32_t>(at[i] < '0' || at[i] > '9') << i;
    return others;
#endif
}

inline constexpr std::array<uint64_t, 9> wholeTens{1,      10,      100,      1000,     10000,
                                                   100000, 1000000, 10000000, 100000000};

inline constexpr std::array<double, 23> tens{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                             1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Appends the digits at `at` to the number and returns where they end. More than 19 digits in all
/// may overflow.
inline const char *appendDigits(const char *at, uint64_t &number)
{
    unsigned count = 8;
    while (count == 8) {
        const EightCharacters characters(at);
        count = characters.digits();
        if (count == 0)
            break;
        number = number * wholeTens[count] + characters.value(count);
        at += count;
    }
    return at;
}

/// The same for the digits behind a point, which are six in most files: the processor goes on
/// before it has counted them.
inline const char *appendDecimals(const char *at, uint64_t &number)
{
    const EightCharacters characters(at);
    if (characters.digits() != 6)
        return appendDigits(at, number);
    number = 1000000 * number + characters.value(6);
    return at + 6;
}

/// Reads the token at `at` when it is a plain decimal number whose value follows exactly from one
/// multiplication or division, and returns its end; null for every other token.
inline const char *parsePlainNumber(const char *at, double &value)
{
    constexpr uint64_t exactIntegers = uint64_t{1} << 53;
    const bool negative = *at == '-';
    at += negative;
    uint64_t digits = 0;
    const char *const first = at;
    // One by one: there are few, and the processor need not wait to know how many.
    unsigned digit = 0;
    while ((digit = static_cast<unsigned>(*at) - '0') < 10) {
        digits = 10 * digits + digit;
        ++at;
    }
    auto count = at - first;
    size_t decimals = 0;
    if (*at == '.') {
        const char *const point = ++at;
        at = appendDecimals(at, digits);
        decimals = static_cast<size_t>(at - point);
        count += at - point;
    }
    // More than 19 digits may have overflown; text that does not end here has an exponent or is not
    // a number.
    if (count == 0 || count > 19 || digits > exactIntegers || !endsToken(*at))
        return nullptr;
    const double magnitude = static_cast<double>(digits) / tens[decimals];
    value = negative ? -magnitude : magnitude;
    return at;
}

} // namespace marlowen
