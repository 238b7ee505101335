#include "model/OneImagePerShot.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace kelvara {

namespace {

/// The lower, the better.
int rank(const PhotoItem& item) {
    switch (item.kind().value_or(MediaKind::video)) {
    case MediaKind::jpeg:
        return 0;
    case MediaKind::heif:
        return 1;
    case MediaKind::raw:
        return 2;
    case MediaKind::video:
        break;
    }
    return 3;
}

} // namespace

std::vector<PhotoItem> oneImagePerShot(std::span<const PhotoItem> items) {
    std::unordered_map<FileURL, const PhotoItem*> best;
    for (const auto& item : items) {
        const auto shot = best.try_emplace(item.url.stemKey(), &item).first;
        if (rank(item) < rank(*shot->second)) shot->second = &item;
    }
    std::vector<PhotoItem> images;
    images.reserve(best.size());
    std::ranges::copy_if(items, std::back_inserter(images),
                         [&](const PhotoItem& item) { return best.at(item.url.stemKey()) == &item; });
    return images;
}

} // namespace kelvara
