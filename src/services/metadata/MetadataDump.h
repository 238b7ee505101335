#pragma once

#include "model/FileURL.h"
#include "model/MetadataSection.h"

#include <stop_token>
#include <vector>

namespace kelvara {

/// Everything the file says about itself, as text, in the order in which it is read. Any thread.
[[nodiscard]] std::vector<MetadataSection> dumpMetadata(const FileURL& url, const std::stop_token& stop);

} // namespace kelvara
