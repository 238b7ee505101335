#include "library/LibraryTypes.h"

#include "text/Localized.h"

#include <array>

namespace kelvara {

namespace {

struct SortOrderTexts {
    SortOrder order;
    std::string_view rawValue;
    std::string_view title;
    std::string_view ascending;
    std::string_view descending;
};

constexpr std::array<SortOrderTexts, 3> sortOrderTexts{{
    {SortOrder::captureDate, "captureDate", "Capture Date", "Oldest First", "Newest First"},
    {SortOrder::name, "name", "File Name", "A to Z", "Z to A"},
    {SortOrder::fileSize, "fileSize", "File Size", "Smallest First", "Largest First"},
}};

constexpr std::array<std::string_view, 3> tabRawValues{"info", "edit", "presets"};

const SortOrderTexts& texts(SortOrder order) { return sortOrderTexts[static_cast<std::size_t>(order)]; }

} // namespace

std::string_view rawValue(SortOrder order) { return texts(order).rawValue; }

std::optional<SortOrder> sortOrder(std::string_view rawValue) {
    for (const auto& row : sortOrderTexts) {
        if (row.rawValue == rawValue) return row.order;
    }
    return std::nullopt;
}

std::string_view rawValue(InspectorTab tab) { return tabRawValues[static_cast<std::size_t>(tab)]; }

std::optional<InspectorTab> inspectorTab(std::string_view rawValue) {
    for (std::size_t i = 0; i < tabRawValues.size(); ++i) {
        if (tabRawValues[i] == rawValue) return static_cast<InspectorTab>(i);
    }
    return std::nullopt;
}

std::string title(SortOrder order) { return localized(texts(order).title); }

std::string directionTitle(SortOrder order, bool ascending) {
    return localized(ascending ? texts(order).ascending : texts(order).descending);
}

} // namespace kelvara
