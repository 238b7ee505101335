#pragma once

#include <exiv2/exiv2.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Reading values of tags in Exiv2's terms, whatever a file may have put there.
namespace kelvara::MetadataValues {

/// The numbers of a value, `most` at most; empty for one that is none, such as a fraction of zero. No number
/// at all when the value is of another type.
[[nodiscard]] std::vector<std::optional<double>> numbers(const Exiv2::Value& value, std::size_t most);

/// Up to its end mark and without white space around it.
[[nodiscard]] std::string trimmed(std::string_view text);

/// For people to read: lists with commas, fractions as decimals, what is no text and longer than a line as a
/// number of bytes.
[[nodiscard]] std::string describe(const Exiv2::Value& value);

} // namespace kelvara::MetadataValues
