#pragma once

#include <cstdint>
#include <string>

namespace kelvara {

/// A file's size as file managers write it, in decimal units: "Zero KB", "1 byte", "532 bytes", "45 KB",
/// "12.3 MB", "3.15 GB".
[[nodiscard]] std::string byteCountText(std::int64_t bytes);

} // namespace kelvara
