#pragma once

#include "samplecard/CardFile.h"

#include <vector>

namespace kelvara::samplecard {

/// What stands on a card beside its photos: sidecars, broken files, a camera's own records, hidden folders, a
/// catalogue bundle. `scale` is that of the photos.
std::vector<CardJob> clutterJobs(double scale);

} // namespace kelvara::samplecard
