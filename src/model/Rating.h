#pragma once

#include <optional>

namespace kelvara {

/// A photographer's grade of 0 (no stars) to 5 stars; any other number is no rating.
class Rating {
public:
    static constexpr int maximum = 5;

    /// No stars.
    constexpr Rating() = default;
    [[nodiscard]] static constexpr std::optional<Rating> fromRawValue(long long value) {
        if (value < 0 || value > maximum) return std::nullopt;
        return Rating{static_cast<int>(value)};
    }

    [[nodiscard]] constexpr int rawValue() const { return m_stars; }
    friend constexpr auto operator<=>(Rating, Rating) = default;

private:
    explicit constexpr Rating(int stars) : m_stars{stars} {}
    int m_stars = 0;
};

} // namespace kelvara
