#include "text/NameOrder.h"

#include <algorithm>
#include <cstdint>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace kelvara {

struct NameOrder::Collator {
    std::unique_ptr<icu::Collator> rules; // null when ICU's data is missing: bytes then decide
};

NameOrder::NameOrder(const std::string& locale) : m_collator{std::make_unique<Collator>()} {
    UErrorCode status = U_ZERO_ERROR;
    const auto named = locale.empty() ? icu::Locale::getRoot() : icu::Locale{locale.c_str()};
    m_collator->rules.reset(icu::Collator::createInstance(named, status));
    if (U_FAILURE(status)) {
        m_collator->rules.reset();
        return;
    }
    m_collator->rules->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    m_collator->rules->setAttribute(UCOL_STRENGTH, UCOL_SECONDARY, status);
}

NameOrder::~NameOrder() = default;
NameOrder::NameOrder(NameOrder&&) noexcept = default;
NameOrder& NameOrder::operator=(NameOrder&&) noexcept = default;

std::string NameOrder::sortKey(std::string_view name) const {
    if (!m_collator->rules) return std::string{name};
    const auto text = icu::UnicodeString::fromUTF8({name.data(), static_cast<std::int32_t>(name.size())});
    std::string key(std::max<std::size_t>(32, name.size() * 3), '\0');
    for (;;) {
        const auto length = m_collator->rules->getSortKey(text, reinterpret_cast<std::uint8_t*>(key.data()),
                                                          static_cast<std::int32_t>(key.size()));
        const auto needed = static_cast<std::size_t>(std::max(length, 1));
        const bool fitted = needed <= key.size();
        key.resize(fitted ? needed - 1 : needed); // the key's own terminating zero is not wanted
        if (fitted) return key;
    }
}

namespace {

bool isPlainASCII(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string loweredASCII(std::string_view text) {
    std::string lowered{text};
    for (auto& c : lowered) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lowered;
}

} // namespace

std::string foldedForSearch(std::string_view name) {
    if (isPlainASCII(name)) return loweredASCII(name);
    UErrorCode status = U_ZERO_ERROR;
    const auto* casefold = icu::Normalizer2::getNFKCCasefoldInstance(status);
    const auto* decompose = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status)) return std::string{name};
    const auto text = icu::UnicodeString::fromUTF8({name.data(), static_cast<std::int32_t>(name.size())});
    const auto folded = decompose->normalize(casefold->normalize(text, status), status);
    icu::UnicodeString bare;
    for (std::int32_t i = 0; i < folded.length(); i = folded.moveIndex32(i, 1)) {
        const auto character = folded.char32At(i);
        if (u_charType(character) != U_NON_SPACING_MARK) bare.append(character);
    }
    std::string result;
    bare.toUTF8String(result);
    return result;
}

} // namespace kelvara
