#include "text/PercentEncoding.h"

#include <fmt/format.h>
#include <iterator>

namespace kelvara {

std::string percentEncoded(std::string_view path) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    std::string encoded;
    for (const char c : path) {
        if (plain.find(c) != std::string_view::npos) {
            encoded += c;
        } else {
            fmt::format_to(std::back_inserter(encoded), "%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return encoded;
}

} // namespace kelvara
