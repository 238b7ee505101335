#pragma once

#include <string>
#include <string_view>

namespace kelvara {

/// Text whatever the bytes are: sequences that are not UTF-8 become U+FFFD. UTF-8 comes back as it is.
[[nodiscard]] std::string repairedUTF8(std::string_view bytes);

} // namespace kelvara
