#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace kelvara {

/// Sorts stably by any predicate, even one that is no strict weak ordering: it then still ends, keeps every
/// element, and gives the same result for the same input. For consistent predicates it sorts like
/// std::stable_sort. Bottom-up merge sort, O(n log n) comparisons.
template <typename T, typename Precedes> void stableMergeSort(std::vector<T>& values, Precedes precedes) {
    std::vector<T> merged;
    merged.reserve(values.size());
    for (std::size_t width = 1; width < values.size(); width *= 2) {
        merged.clear();
        for (std::size_t begin = 0; begin < values.size(); begin += 2 * width) {
            auto left = begin;
            const auto middle = std::min(begin + width, values.size());
            auto right = middle;
            const auto end = std::min(begin + 2 * width, values.size());
            while (left < middle && right < end) {
                // Only a strictly smaller right element overtakes, so equal ones keep their order.
                auto& next = precedes(values[right], values[left]) ? values[right++] : values[left++];
                merged.push_back(std::move(next));
            }
            std::move(values.begin() + static_cast<std::ptrdiff_t>(left),
                      values.begin() + static_cast<std::ptrdiff_t>(middle), std::back_inserter(merged));
            std::move(values.begin() + static_cast<std::ptrdiff_t>(right),
                      values.begin() + static_cast<std::ptrdiff_t>(end), std::back_inserter(merged));
        }
        values.swap(merged);
    }
}

} // namespace kelvara
