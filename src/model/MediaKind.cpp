#include "model/MediaKind.h"

#include <algorithm>
#include <cstdint>

namespace kelvara {

namespace {

/// An extension of up to four letters as one number, in lower case: a scan asks this for every name it meets.
constexpr std::uint32_t packed(std::string_view extension) {
    std::uint32_t letters = 0;
    for (const char c : extension) {
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        letters = letters << 8 | static_cast<unsigned char>(lower);
    }
    return letters;
}

template <std::size_t count> constexpr auto packedAll(const std::array<std::string_view, count>& extensions) {
    std::array<std::uint32_t, count> letters{};
    std::transform(extensions.begin(), extensions.end(), letters.begin(), packed);
    return letters;
}

constexpr auto rawLetters = packedAll(rawExtensions);
constexpr auto jpegLetters = packedAll(jpegExtensions);
constexpr auto heifLetters = packedAll(heifExtensions);
constexpr auto videoLetters = packedAll(videoExtensions);

} // namespace

std::optional<MediaKind> mediaKind(std::string_view extension) {
    if (extension.empty() || extension.size() > sizeof(std::uint32_t)) return std::nullopt;
    const auto isOneOf = [wanted = packed(extension)](const auto& letters) {
        return std::find(letters.begin(), letters.end(), wanted) != letters.end();
    };
    if (isOneOf(rawLetters)) return MediaKind::raw;
    if (isOneOf(jpegLetters)) return MediaKind::jpeg;
    if (isOneOf(heifLetters)) return MediaKind::heif;
    if (isOneOf(videoLetters)) return MediaKind::video;
    return std::nullopt;
}

} // namespace kelvara
