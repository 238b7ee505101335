#include "text/ByteCount.h"

#include <array>
#include <cmath>
#include <fmt/format.h>
#include <string_view>

namespace kelvara {

std::string byteCountText(std::int64_t bytes) {
    if (bytes == 0) return "Zero KB";
    if (bytes == 1) return "1 byte";
    if (bytes > -1000 && bytes < 1000) return fmt::format("{} bytes", bytes);

    constexpr std::array<std::string_view, 6> units{"KB", "MB", "GB", "TB", "PB", "EB"};
    // Kilobytes say no more than whole numbers; the larger the unit, the more a fraction is worth.
    constexpr std::array<int, 6> fractionDigits{0, 1, 2, 2, 2, 2};
    std::size_t unit = 0;
    double value = static_cast<double>(bytes) / 1000;
    const auto rounded = [&] {
        const double scale = std::pow(10, fractionDigits[unit]);
        return std::round(value * scale) / scale;
    };
    while (std::abs(rounded()) >= 1000 && unit + 1 < units.size()) {
        value /= 1000;
        ++unit;
    }
    return fmt::format("{} {}", rounded(), units[unit]);
}

} // namespace kelvara
