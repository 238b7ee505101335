// Order, search and filters on 10,000, 100,000 and a million items: how they scale, and what they cost beside
// a plain sort of as many integers or a plain pass over the names.

#include "bench/Compare.h"
#include "library/ItemFilter.h"
#include "library/ItemOrder.h"

#include <cstring>
#include <numeric>
#include <random>

using namespace kelvara;

namespace {

std::vector<PhotoItem> makeItems(std::size_t count) {
    std::mt19937_64 random{42};
    std::vector<PhotoItem> items;
    items.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto shot = i / 2;
        const auto path = "/media/card/DCIM/" + std::to_string(100 + shot / 1000) + "KELVA/DSC_" +
                          std::to_string(10'000 + shot * 7919 % 90'000) + (i % 2 != 0 ? ".JPG" : ".NEF");
        items.push_back({FileURL{path}, static_cast<std::int64_t>(random() % 60'000'000),
                         FileTime{std::chrono::seconds{1'700'000'000 +
                                                       static_cast<std::int64_t>(random() % 1'000'000)}}});
    }
    return items;
}

void measure(std::size_t count, int rounds) {
    std::printf("\n%zu items\n", count);
    const auto items = makeItems(count);
    LibraryIndex index;
    bench::report("  sort keys (in the background, per scan)", std::max(rounds / 4, 1), [&] {
        index = LibraryIndex{items, {}};
    });

    std::vector<std::uint64_t> integers(count);
    const auto sortIntegers = [&] {
        std::mt19937_64 random{1};
        for (auto& value : integers) value = random();
        std::sort(integers.begin(), integers.end());
    };
    std::vector<std::uint32_t> order;
    for (const auto by : {SortOrder::captureDate, SortOrder::name, SortOrder::fileSize}) {
        bench::compare(
            "  sort by " + std::string{rawValue(by)}, rounds, static_cast<double>(count), "items",
            [&] { order = sorted(index, count, by, false); }, "sort of integers", sortIntegers);
    }

    std::set<std::string> hidden;
    std::vector<bool> checked(count);
    std::unordered_map<FileURL, Rating> ratings;
    for (std::size_t i = 0; i < count; i += 7) {
        checked[i] = true;
        ratings.emplace(items[i].url.stemKey(), *Rating::fromRawValue(static_cast<int>(i % 6)));
    }
    std::size_t touched = 0;
    const auto readNames = [&] {
        for (const auto& item : items)
            touched += std::memchr(item.url.path().data(), '5', item.url.path().size()) != nullptr;
    };
    const auto filterBench = [&](const char* title, const ItemFilter& filter) {
        bench::compare(
            title, rounds, static_cast<double>(count), "items",
            [&] { touched += filter.apply(order, index).size(); }, "memchr over paths", readNames);
    };
    filterBench("  search", {hidden, false, checked, {}, ratings, "c_123"});
    filterBench("  stars",
                {hidden, false, checked, RatingFilter::atLeast(*Rating::fromRawValue(3)), ratings, ""});
    filterBench("  marked", {hidden, true, checked, {}, ratings, ""});
    hidden = {"NEF"};
    filterBench("  file type", {hidden, false, checked, {}, ratings, ""});
}

} // namespace

int main() {
    measure(10'000, 41);
    measure(100'000, 21);
    measure(1'000'000, 5);
}
