#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace kelvara {

/// How people expect file names to be sorted: case ignored, runs of digits by their number, accents by the
/// language's rule (Unicode Collation Algorithm, UTS #10, with the CLDR tailoring of a locale).
///
/// Not thread-safe; making one costs some 50 µs after the first.
class NameOrder {
public:
    /// `locale` is a BCP 47 or ICU name; empty for the language-neutral order.
    explicit NameOrder(const std::string& locale = {});
    ~NameOrder();
    NameOrder(NameOrder&&) noexcept;
    NameOrder& operator=(NameOrder&&) noexcept;

    /// Bytes that compare like the names do. `name` need not be valid UTF-8.
    [[nodiscard]] std::string sortKey(std::string_view name) const;
    /// Whether `a` comes strictly before `b`.
    [[nodiscard]] bool precedes(std::string_view a, std::string_view b) const {
        return sortKey(a) < sortKey(b);
    }

private:
    struct Collator;
    std::unique_ptr<Collator> m_collator;
};

/// A name as searching sees it: composed and decomposed letters alike, neither case nor accents
/// (NFKC_Casefold of UAX #31, decomposed, without combining marks). A text is contained in a name when its
/// folded form is a substring of the name's.
[[nodiscard]] std::string foldedForSearch(std::string_view name);

} // namespace kelvara
