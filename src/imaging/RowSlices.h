#pragma once

#include <cstdint>
#include <functional>

namespace kelvara {

/// Runs `work(begin, end)` for slices of the rows 0 to `rows` of a picture of `pixels`, large ones on up to
/// four cores at once, and returns when all have ended. The threads are its own, so that jobs of any pool may
/// call it and none waits for another. A slice has at least `fewestPixels`, which should take some ten
/// milliseconds, beside which a thread is nothing. `work` doesn't throw.
void forRowSlices(int rows, std::int64_t pixels, const std::function<void(int begin, int end)>& work,
                  std::int64_t fewestPixels = 2 << 20);

} // namespace kelvara
