#include "text/NameRanks.h"

#include "text/NameOrder.h"

#include <algorithm>
#include <cstring>

namespace kelvara {

namespace {

/// A sort key's place in one long text of all keys, and its first bytes as a number that compares like them:
/// most comparisons end there, without touching the text.
struct Key {
    std::uint64_t head = 0;
    std::uint32_t start = 0;
    std::uint32_t length = 0;
    std::uint32_t name = 0;
};

std::uint64_t leadingBytes(std::string_view key) {
    std::uint64_t head = 0;
    for (std::size_t i = 0; i < sizeof head; ++i) {
        head = head << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0);
    }
    return head;
}

std::size_t commonPrefix(std::string_view a, std::string_view b) {
    const auto length = std::min(a.size(), b.size());
    return static_cast<std::size_t>(
        std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(length), b.begin()).first -
        a.begin());
}

} // namespace

std::vector<std::uint32_t> nameRanks(std::size_t count,
                                     const std::function<std::string_view(std::size_t)>& name,
                                     const std::string& locale) {
    const NameOrder order{locale};
    std::string texts;
    std::vector<Key> keys(count);
    std::size_t shared = std::string::npos;
    for (std::size_t i = 0; i < count; ++i) {
        const auto text = order.sortKey(name(i));
        keys[i] = {0, static_cast<std::uint32_t>(texts.size()), static_cast<std::uint32_t>(text.size()),
                   static_cast<std::uint32_t>(i)};
        texts += text;
        shared = i == 0 ? text.size()
                        : std::min(shared, commonPrefix(text, std::string_view{texts}.substr(0, shared)));
    }
    const auto textOf = [&](const Key& key) { return std::string_view{texts}.substr(key.start, key.length); };
    // A camera's names begin alike ("DSC_0"), so the heads are taken behind what all keys share.
    for (auto& key : keys) key.head = leadingBytes(textOf(key).substr(shared));
    std::sort(keys.begin(), keys.end(), [&](const Key& a, const Key& b) {
        return a.head != b.head ? a.head < b.head : textOf(a) < textOf(b);
    });

    std::vector<std::uint32_t> ranks(count);
    std::uint32_t rank = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const bool equalsPrevious =
            i > 0 && keys[i].head == keys[i - 1].head && textOf(keys[i]) == textOf(keys[i - 1]);
        if (i > 0 && !equalsPrevious) ++rank;
        ranks[keys[i].name] = rank;
    }
    return ranks;
}

} // namespace kelvara
