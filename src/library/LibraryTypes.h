#pragma once

#include "model/Rating.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kelvara {

enum class SortOrder { captureDate, name, fileSize };
enum class ViewMode { grid, loupe };
enum class InspectorTab { info, edit, presets };
enum class MoveDirection { left, right, up, down };

/// Raw values as preferences keep them: "captureDate".
[[nodiscard]] std::string_view rawValue(SortOrder order);
[[nodiscard]] std::string_view rawValue(InspectorTab tab);
[[nodiscard]] std::optional<SortOrder> sortOrder(std::string_view rawValue);
[[nodiscard]] std::optional<InspectorTab> inspectorTab(std::string_view rawValue);

/// "Capture Date"
[[nodiscard]] std::string title(SortOrder order);
/// "Oldest First"
[[nodiscard]] std::string directionTitle(SortOrder order, bool ascending);

/// Which photos the grid keeps, by stars.
class RatingFilter {
public:
    [[nodiscard]] static RatingFilter atLeast(Rating lowest) { return RatingFilter{lowest}; }
    [[nodiscard]] static RatingFilter unrated() { return RatingFilter{std::nullopt}; }

    /// The fewest stars that pass; empty for `unrated`.
    [[nodiscard]] std::optional<Rating> lowest() const { return m_lowest; }
    [[nodiscard]] bool accepts(Rating rating) const {
        return m_lowest ? rating >= *m_lowest : rating == Rating{};
    }
    friend bool operator==(const RatingFilter&, const RatingFilter&) = default;

private:
    explicit RatingFilter(std::optional<Rating> lowest) : m_lowest{lowest} {}
    std::optional<Rating> m_lowest;
};

/// A zoom command on its way to the loupe; a new `serial` makes it a new request.
struct ZoomRequest {
    enum class Command { toggle, zoomIn, zoomOut, fit };
    Command command = Command::toggle;
    int serial = 0;
    friend bool operator==(const ZoomRequest&, const ZoomRequest&) = default;
};

/// Positions in a list, first to one past the last.
struct IndexRange {
    std::size_t begin = 0;
    std::size_t end = 0;
    friend bool operator==(const IndexRange&, const IndexRange&) = default;
};

} // namespace kelvara
