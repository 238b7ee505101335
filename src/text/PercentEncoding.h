#pragma once

#include <string>
#include <string_view>

namespace kelvara {

/// A path as URIs write it, in plain ASCII whatever bytes it is made of: "/card/caf%E9.jpg".
[[nodiscard]] std::string percentEncoded(std::string_view path);

} // namespace kelvara
