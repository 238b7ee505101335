#include "model/PhotoItem.h"

std::size_t std::hash<kelvara::PhotoItem>::operator()(const kelvara::PhotoItem& item) const noexcept {
    const auto combine = [](std::size_t seed, std::size_t value) {
        return seed ^ (value + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2));
    };
    auto seed = combine(item.url.hash(), std::hash<std::int64_t>{}(item.fileSize));
    seed = combine(seed, item.creationDate ? 1 : 0);
    if (item.creationDate) {
        seed = combine(seed, std::hash<std::int64_t>{}(item.creationDate->time_since_epoch().count()));
    }
    return seed;
}
