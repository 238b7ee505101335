#pragma once

#include <cstddef>
#include <exception>
#include <string>

namespace kelvara {

/// Adds what an encoder gives to a file in memory. False when that runs out: a C library must not meet an
/// exception.
[[nodiscard]] inline bool appended(std::string& file, const void* bytes, std::size_t count) noexcept {
    try {
        file.append(static_cast<const char*>(bytes), count);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace kelvara
