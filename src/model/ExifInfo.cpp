#include "model/ExifInfo.h"

#include <array>
#include <charconv>
#include <cmath>

namespace kelvara {
namespace {

/// All digits of the shortest decimal that reads back as `value`.
std::string shortestDecimal(double value) {
    std::array<char, 512> digits{}; // the smallest number has some 330 behind its point
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    return {digits.data(), end.ptr};
}

/// Adds one in the last place: 1.9 becomes 2.0.
void increment(std::string& digits) {
    for (auto at = digits.size(); at-- > 0;) {
        if (digits[at] == '.') continue;
        if (digits[at] != '9') {
            ++digits[at];
            return;
        }
        digits[at] = '0';
    }
    digits.insert(0, 1, '1');
}

std::optional<int> wholeNumber(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

} // namespace

std::string decimalText(double value, std::size_t digits) {
    auto text = shortestDecimal(std::abs(value));
    const auto point = text.find('.');
    if (point != std::string::npos && text.size() - point - 1 > digits) {
        const auto rest = text.substr(point + 1 + digits);
        text.resize(digits == 0 ? point : point + 1 + digits);
        const bool isOdd = (text.back() - '0') % 2 != 0;
        if (rest > "5" || (rest == "5" && isOdd)) increment(text);
    }
    if (text.find('.') != std::string::npos) {
        while (text.back() == '0') text.pop_back();
        if (text.back() == '.') text.pop_back();
    }
    return value < 0 && text != "0" ? '-' + text : text;
}

std::string ExifInfo::apertureText() const {
    return fNumber ? "ƒ/" + decimalText(*fNumber, 1) : std::string{};
}

std::string ExifInfo::shutterText() const {
    if (!exposureTime || *exposureTime <= 0) return {};
    if (*exposureTime >= 1) return decimalText(*exposureTime, 1) + 's';
    return "1/" + decimalText(std::round(1 / *exposureTime), 0) + 's';
}

std::string ExifInfo::exposureBiasText() const {
    if (!exposureBias) return {};
    const auto number = decimalText(*exposureBias, 1);
    return (number.starts_with('-') ? "" : "+") + number + " EV";
}

std::string ExifInfo::focalLengthText() const {
    return focalLength ? decimalText(*focalLength, 0) + "mm" : std::string{};
}

std::string ExifInfo::summaryLine() const {
    std::string line;
    for (const auto& part :
         {apertureText(), shutterText(), iso ? "ISO " + std::to_string(*iso) : std::string{}}) {
        if (part.empty()) continue;
        if (!line.empty()) line += " · ";
        line += part;
    }
    return line;
}

std::optional<std::chrono::local_seconds> ExifInfo::parseDate(std::string_view text) {
    using namespace std::chrono;
    std::array<int, 6> parts{};
    std::size_t count = 0;
    while (true) {
        const auto start = text.find_first_not_of(": ");
        if (start == std::string_view::npos) break;
        text.remove_prefix(start);
        const auto part = text.substr(0, text.find_first_of(": "));
        const auto number = wholeNumber(part);
        if (!number || count == parts.size()) return std::nullopt;
        parts[count++] = *number;
        text.remove_prefix(part.size());
    }
    if (count < parts.size()) return std::nullopt;
    const auto [y, month, day, hour, minute, second] = parts;
    const auto isWithin = [](int value, int last) { return value >= 0 && value <= last; };
    if (!isWithin(y, 9999) || !isWithin(month, 12) || !isWithin(day, 31)) return std::nullopt;
    if (!isWithin(hour, 23) || !isWithin(minute, 59) || !isWithin(second, 59)) return std::nullopt;
    const year_month_day date{year{y}, std::chrono::month{static_cast<unsigned>(month)},
                              std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok()) return std::nullopt;
    return local_days{date} + hours{hour} + minutes{minute} + seconds{second};
}

} // namespace kelvara

std::size_t std::hash<kelvara::ExifInfo>::operator()(const kelvara::ExifInfo& info) const noexcept {
    std::size_t result = 0;
    const auto add = [&result]<typename T>(const std::optional<T>& field) {
        result = result * 31 + std::hash<std::optional<T>>{}(field);
    };
    for (const auto* text : {&info.cameraMake, &info.cameraModel, &info.lensModel}) add(*text);
    add(info.captureDate ? std::optional{info.captureDate->time_since_epoch().count()} : std::nullopt);
    for (const auto* number : {&info.fNumber, &info.exposureTime, &info.focalLength, &info.exposureBias})
        add(*number);
    for (const auto* number : {&info.iso, &info.pixelWidth, &info.pixelHeight, &info.orientation})
        add(*number);
    return result;
}
