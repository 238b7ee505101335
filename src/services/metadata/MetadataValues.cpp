#include "services/metadata/MetadataValues.h"

#include "model/ExifInfo.h"
#include "text/ByteCount.h"

#include <algorithm>
#include <cmath>

namespace kelvara::MetadataValues {
namespace {

constexpr std::size_t mostListed = 64;
constexpr std::size_t mostCharacters = 2000;
constexpr std::size_t mostDigits = 6;

template <typename T> std::optional<double> fraction(const std::pair<T, T>& value) {
    if (value.second == 0) return std::nullopt;
    return static_cast<double>(value.first) / static_cast<double>(value.second);
}

template <typename T> std::optional<double> number(T value) {
    const auto result = static_cast<double>(value);
    return std::isfinite(result) ? std::optional{result} : std::nullopt;
}

template <typename T> std::optional<double> number(const std::pair<T, T>& value) { return fraction(value); }

/// Whether `value` is made of T; its numbers then.
template <typename T>
bool collect(const Exiv2::Value& value, std::size_t most, std::vector<std::optional<double>>& to) {
    const auto* list = dynamic_cast<const Exiv2::ValueType<T>*>(&value);
    if (!list) return false;
    for (std::size_t i = 0; i < std::min(list->value_.size(), most); ++i)
        to.push_back(number(list->value_[i]));
    return true;
}

std::string bytesOf(const Exiv2::Value& value) {
    std::string bytes(static_cast<std::size_t>(std::max(value.size(), 0L)), '\0');
    if (!bytes.empty()) value.copy(reinterpret_cast<Exiv2::byte*>(bytes.data()), Exiv2::littleEndian);
    return bytes;
}

bool isPrintable(std::string_view text) {
    return std::ranges::all_of(text, [](unsigned char c) { return c >= 0x20 && c < 0x7F; });
}

std::string joined(const std::vector<std::string>& parts) {
    std::string result;
    for (const auto& part : parts) {
        if (!result.empty()) result += ", ";
        result += part;
    }
    return result;
}

std::string shortened(std::string text) {
    if (text.size() <= mostCharacters) return text;
    auto end = mostCharacters;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end; // between two characters
    return text.substr(0, end) + "…";
}

std::string sizeText(const Exiv2::Value& value) { return byteCountText(std::max(value.size(), 0L)); }

std::string describeBytes(const Exiv2::Value& value) {
    const auto bytes = bytesOf(value);
    const auto text = std::string_view{bytes}.substr(0, bytes.find_last_not_of('\0') + 1);
    // A single one is more often a number.
    if (text.size() > 1 && isPrintable(text)) return shortened(trimmed(text));
    if (bytes.size() > mostListed) return sizeText(value);
    std::vector<std::string> parts;
    for (const auto byte : bytes) parts.push_back(std::to_string(static_cast<unsigned char>(byte)));
    return joined(parts);
}

std::string describeNumbers(const Exiv2::Value& value) {
    if (static_cast<std::size_t>(std::max(value.count(), 0L)) > mostListed) return sizeText(value);
    std::vector<std::string> parts;
    for (const auto& number : numbers(value, mostListed)) {
        parts.push_back(number ? decimalText(*number, mostDigits) : "-");
    }
    return joined(parts);
}

/// The default language of a text in several.
std::string describeAlternatives(const Exiv2::LangAltValue& value) {
    const auto found = value.value_.find("x-default");
    if (found != value.value_.end()) return trimmed(found->second);
    return value.value_.empty() ? std::string{} : trimmed(value.value_.begin()->second);
}

} // namespace

std::vector<std::optional<double>> numbers(const Exiv2::Value& value, std::size_t most) {
    std::vector<std::optional<double>> result;
    static_cast<void>(
        collect<std::uint16_t>(value, most, result) || collect<std::uint32_t>(value, most, result) ||
        collect<std::int16_t>(value, most, result) || collect<std::int32_t>(value, most, result) ||
        collect<Exiv2::URational>(value, most, result) || collect<Exiv2::Rational>(value, most, result) ||
        collect<float>(value, most, result) || collect<double>(value, most, result));
    return result;
}

std::string trimmed(std::string_view text) {
    constexpr std::string_view space{" \t\r\n\v\f"};
    text = text.substr(0, text.find('\0'));
    const auto start = text.find_first_not_of(space);
    if (start == std::string_view::npos) return {};
    return std::string{text.substr(start, text.find_last_not_of(space) + 1 - start)};
}

std::string describe(const Exiv2::Value& value) {
    switch (value.typeId()) {
    case Exiv2::undefined:
    case Exiv2::unsignedByte:
    case Exiv2::signedByte:
        // A comment begins with the name of its letters.
        if (const auto* comment = dynamic_cast<const Exiv2::CommentValue*>(&value)) {
            return shortened(trimmed(comment->comment()));
        }
        return describeBytes(value);
    case Exiv2::unsignedShort:
    case Exiv2::unsignedLong:
    case Exiv2::signedShort:
    case Exiv2::signedLong:
    case Exiv2::unsignedRational:
    case Exiv2::signedRational:
    case Exiv2::tiffIfd:
    case Exiv2::tiffFloat:
    case Exiv2::tiffDouble:
        return describeNumbers(value);
    case Exiv2::langAlt:
        if (const auto* texts = dynamic_cast<const Exiv2::LangAltValue*>(&value)) {
            return shortened(describeAlternatives(*texts));
        }
        [[fallthrough]];
    default:
        return shortened(trimmed(value.toString()));
    }
}

} // namespace kelvara::MetadataValues
