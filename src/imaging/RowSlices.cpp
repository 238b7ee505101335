#include "imaging/RowSlices.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

namespace kelvara {

void forRowSlices(int rows, std::int64_t pixels, const std::function<void(int begin, int end)>& work,
                  std::int64_t fewestPixels) {
    const std::int64_t cores = std::clamp(std::thread::hardware_concurrency(), 1U, 4U);
    const auto slices =
        std::clamp<std::int64_t>(std::min<std::int64_t>(pixels / fewestPixels, rows), 1, cores);
    const auto border = [&](std::int64_t slice) { return static_cast<int>(rows * slice / slices); };
    std::vector<std::jthread> others;
    std::int64_t given = 1; // the first is the caller's
    try {
        for (; given < slices; ++given) others.emplace_back(work, border(given), border(given + 1));
    } catch (const std::system_error&) {
        work(border(given), rows); // no more threads
    }
    work(0, border(1));
}

} // namespace kelvara
