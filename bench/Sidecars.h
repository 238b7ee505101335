#pragma once

#include <cstddef>
#include <string>

namespace kelvara::bench {

/// A sidecar of some 8 KB like those that catalogue programs write: a rating, develop settings as attributes,
/// curves and keywords as elements. `number` varies its rating and values.
[[nodiscard]] std::string sidecarText(std::size_t number);

} // namespace kelvara::bench
