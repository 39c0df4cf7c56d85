#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace marlowen {

/// Numbers in the text of a mesh. The text is a run of whole tokens that ends in white space, so
/// that reading a number needs no test for its end.

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

/// Reads the token at `at` when it is a plain decimal number whose value follows exactly from one
/// multiplication or division, and returns its end; null for every other token.
inline const char *parsePlainNumber(const char *at, double &value)
{
    constexpr std::array<double, 23> tens{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                          1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr uint64_t exactIntegers = uint64_t{1} << 53;
    const bool negative = *at == '-';
    at += negative;
    uint64_t digits = 0;
    const char *const first = at;
    unsigned digit = 0;
    while ((digit = static_cast<unsigned>(*at) - '0') < 10) {
        digits = 10 * digits + digit;
        ++at;
    }
    auto count = at - first;
    size_t decimals = 0;
    if (*at == '.') {
        const char *const point = ++at;
        while ((digit = static_cast<unsigned>(*at) - '0') < 10) {
            digits = 10 * digits + digit;
            ++at;
        }
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
