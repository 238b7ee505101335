#include "text/CaseFolding.h"

#include <cstdint>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace kelvara {

// The conversions are those of ICU's macros.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"

std::string caseFolded(std::string_view path) {
    std::string folded;
    folded.reserve(path.size());
    const auto size = static_cast<std::int32_t>(path.size());
    for (std::int32_t at = 0; at < size;) {
        const auto start = at;
        UChar32 character = 0;
        U8_NEXT(path.data(), at, size, character);
        if (character < 0) {
            folded.append(path, static_cast<std::size_t>(start), static_cast<std::size_t>(at - start));
            continue;
        }
        char bytes[U8_MAX_LENGTH];
        std::int32_t length = 0;
        U8_APPEND_UNSAFE(bytes, length, u_foldCase(character, U_FOLD_CASE_DEFAULT));
        folded.append(bytes, static_cast<std::size_t>(length));
    }
    return folded;
}

#pragma GCC diagnostic pop

} // namespace kelvara
