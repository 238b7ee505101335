#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelvara {

/// The number that the whole of `text` spells as in C, whatever the locale: "+0.35", "1e-3", "0x1F", "inf".
[[nodiscard]] std::optional<double> parsedNumber(std::string_view text);

/// The shortest text that reads back as the number, with a point or an exponent: "1.0", "2.5", "1e-05".
[[nodiscard]] std::string numberText(double number);

} // namespace kelvara
