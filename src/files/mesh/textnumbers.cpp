#include "files/mesh/textnumbers.h"

#include <algorithm>
#include <limits>

namespace marlowen {

namespace {

/// The value of a number that no double holds: infinite or 0. from_chars does not tell which.
double valueBeyondRange(std::string_view number)
{
    const bool negative = number.front() == '-';
    const size_t e = std::min(number.find_first_of("eE"), number.size());
    const size_t point = std::min(number.find('.'), e);
    const size_t first = number.find_first_of("123456789");
    // The power of ten of the first digit that is not 0, by its place alone.
    const double place = static_cast<double>(point) - static_cast<double>(first);
    int exponent = 0;
    if (e + 1 < number.size()) {
        const bool plus = number[e + 1] == '+';
        const char *const end = number.data() + number.size();
        const auto [stop, error] = std::from_chars(number.data() + e + 1 + plus, end, exponent);
        if (error == std::errc::result_out_of_range)
            return number[e + 1] == '-' ? 0.0 : std::numeric_limits<double>::infinity();
    }
    if (place + exponent < 0.0)
        return 0.0;
    const double infinity = std::numeric_limits<double>::infinity();
    return negative ? -infinity : infinity;
}

} // namespace

bool parseNumber(std::string_view token, double &value)
{
    if (token.size() > 1 && token.front() == '+' && token[1] != '-')
        token.remove_prefix(1);
    const char *const end = token.data() + token.size();
    double parsed = 0.0;
    const auto [stop, error] = std::from_chars(token.data(), end, parsed);
    if (stop != end || token.empty())
        return false;
    if (error == std::errc::result_out_of_range)
        parsed = valueBeyondRange(token);
    else if (error != std::errc())
        return false;
    value = parsed;
    return true;
}

} // namespace marlowen
