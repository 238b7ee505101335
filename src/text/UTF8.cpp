#include "text/UTF8.h"

#include <cstdint>
#include <unicode/unistr.h>

namespace kelvara {

std::string repairedUTF8(std::string_view bytes) {
    std::string text;
    icu::UnicodeString::fromUTF8({bytes.data(), static_cast<std::int32_t>(bytes.size())}).toUTF8String(text);
    return text;
}

} // namespace kelvara
