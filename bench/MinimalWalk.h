#pragma once

#include <cstdint>

namespace kelvara::bench {

struct MinimalWalkResult {
    std::int64_t entries = 0;
    std::int64_t mediaFiles = 0;
    std::int64_t bytes = 0;
};

/// The least that a walk can do: getdents64 for every folder, statx for every name that ends in a media
/// extension, nothing kept. The physical limit that the folder scan is measured against.
MinimalWalkResult minimalWalk(const char* folder);

} // namespace kelvara::bench
