#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kelvara {

/// How a photo was taken, as far as its file says. The texts read the same in every locale and are empty
/// where their field is.
struct ExifInfo {
    std::optional<std::string> cameraMake;
    std::optional<std::string> cameraModel;
    std::optional<std::string> lensModel;
    /// By the camera's clock, whose time zone nobody knows.
    std::optional<std::chrono::local_seconds> captureDate;
    std::optional<double> fNumber;
    std::optional<double> exposureTime; ///< Seconds.
    std::optional<int> iso;
    std::optional<double> focalLength;  ///< Millimetres.
    std::optional<double> exposureBias; ///< EV.
    std::optional<int> pixelWidth;      ///< As stored, before it is turned by `orientation`.
    std::optional<int> pixelHeight;
    std::optional<int> orientation; ///< 1 to 8, as EXIF numbers it.

    [[nodiscard]] std::string apertureText() const;     ///< "ƒ/2.8"
    [[nodiscard]] std::string shutterText() const;      ///< "1/250s", "2.5s"
    [[nodiscard]] std::string exposureBiasText() const; ///< "+0.7 EV", "+0 EV"
    [[nodiscard]] std::string focalLengthText() const;  ///< "35mm"
    /// "ƒ/2.8 · 1/250s · ISO 400", or what there is of it.
    [[nodiscard]] std::string summaryLine() const;

    /// From "2024:03:09 14:05:33". Empty for anything that isn't six whole numbers or no day of the calendar.
    [[nodiscard]] static std::optional<std::chrono::local_seconds> parseDate(std::string_view text);

    friend bool operator==(const ExifInfo&, const ExifInfo&) = default;
};

/// With at most `digits` digits after the point and none that say nothing: 2.8, 8. What is rounded is the
/// shortest decimal that stands for the number, half to even, so that 0.35 gives 0.4 as on paper.
[[nodiscard]] std::string decimalText(double value, std::size_t digits);

} // namespace kelvara

template <> struct std::hash<kelvara::ExifInfo> {
    std::size_t operator()(const kelvara::ExifInfo& info) const noexcept;
};
