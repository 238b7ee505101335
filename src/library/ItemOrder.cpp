#include "library/ItemOrder.h"

#include <algorithm>
#include <limits>

namespace kelvara {

namespace {

/// An item's place in the order, smallest first.
struct SortKey {
    std::int64_t major = 0;
    std::uint32_t nameRank = 0;
    std::uint32_t item = 0;

    friend bool operator<(const SortKey& a, const SortKey& b) {
        if (a.major != b.major) return a.major < b.major;
        if (a.nameRank != b.nameRank) return a.nameRank < b.nameRank;
        return a.item < b.item; // what the list had first stays first
    }
};

std::int64_t major(const LibraryIndex::Shot& shot, SortOrder order) {
    switch (order) {
    case SortOrder::captureDate:
        return shot.date ? shot.date->time_since_epoch().count() : std::numeric_limits<std::int64_t>::max();
    case SortOrder::fileSize:
        return shot.largestSize;
    case SortOrder::name:
        break;
    }
    return 0;
}

} // namespace

std::vector<std::uint32_t> sorted(const LibraryIndex& index, std::size_t itemCount, SortOrder order,
                                  bool ascending) {
    std::vector<SortKey> keys(itemCount);
    for (std::uint32_t i = 0; i < itemCount; ++i)
        keys[i] = {major(index.shot(i), order), index.nameRank(i), i};
    std::sort(keys.begin(), keys.end());

    std::vector<std::uint32_t> positions(itemCount);
    std::transform(keys.begin(), keys.end(), positions.begin(), [](const SortKey& key) { return key.item; });
    if (!ascending) std::reverse(positions.begin(), positions.end());
    return positions;
}

} // namespace kelvara
