#pragma once

#include <string>
#include <string_view>

namespace kelvara {

/// A file name or path as file systems that ignore case compare it: two that differ by case alone give the
/// same text (simple case folding of the Unicode standard, character by character). Bytes that are not UTF-8
/// stay as they are, so that different names never become one by accident.
[[nodiscard]] std::string caseFolded(std::string_view path);

} // namespace kelvara
