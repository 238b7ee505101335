#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace kelvara {

/// A member of a JSON object as it stands in the text, so that what this program doesn't know can be kept
/// byte for byte.
struct JSONMember {
    std::string_view key; ///< With its quotes.
    std::string_view value;
};

/// The members of the one object that `text` consists of, views into it; their values may make sense or not.
/// Empty where the text is no such object, or ends within it.
[[nodiscard]] std::optional<std::vector<JSONMember>> jsonMembers(std::string_view text);

} // namespace kelvara
