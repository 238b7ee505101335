#include "presets/NumberText.h"

#include <cstdlib>
#include <fmt/format.h>
#include <locale.h>

namespace kelvara {

std::optional<double> parsedNumber(std::string_view text) {
    // The process's own locale may write a comma for the point.
    static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    constexpr std::string_view spaces = " \t\n\v\f\r"; // skipped by the conversion
    if (text.empty() || spaces.find(text.front()) != std::string_view::npos) return std::nullopt;
    const std::string terminated{text};
    char* end = nullptr;
    const double number = ::strtod_l(terminated.c_str(), &end, plain);
    if (end != terminated.data() + terminated.size()) return std::nullopt;
    return number;
}

std::string numberText(double number) {
    auto text = fmt::format("{}", number);
    if (text.find_first_not_of("-0123456789") == std::string::npos) text += ".0";
    return text;
}

} // namespace kelvara
