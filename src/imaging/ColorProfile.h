#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace kelvara {

class ColorProfile;
/// Immutable and shared; never null where a profile is required.
using ColorProfilePtr = std::shared_ptr<const ColorProfile>;

/// The corners of a colour space, by their CIE 1931 chromaticities.
struct Primaries {
    struct Point {
        double x, y;
    };
    Point white, red, green, blue;

    static const Primaries sRGB; ///< ITU-R BT.709.
};

/// What the numbers of an image mean: an ICC profile, kept as its bytes. Thread-safe, as nothing in it
/// changes.
class ColorProfile {
public:
    enum class Model { rgb, cmyk };

    /// The common spaces; each call gives the same object.
    [[nodiscard]] static ColorProfilePtr sRGB();
    [[nodiscard]] static ColorProfilePtr displayP3();
    [[nodiscard]] static ColorProfilePtr adobeRGB();

    /// Null when the bytes are no profile of an input or display device. A profile that describes sRGB to
    /// within rounding gives `sRGB()` itself, so that images in it need no conversion. One for shades of grey
    /// gives the RGB profile in which equal parts are those shades.
    [[nodiscard]] static ColorProfilePtr fromIcc(std::span<const std::uint8_t> icc);
    /// The space of a picture that names it by the code points of ITU-T H.273, as films, HEIF and AVIF do.
    /// High dynamic range is mapped to what a screen shows: diffuse white becomes a light grey, highlights up
    /// to 1000 cd/m2 lie between it and white. Null for code points without meaning.
    [[nodiscard]] static ColorProfilePtr fromCodePoints(int primaries, int transfer);
    /// Light as a power of the stored number. Null when the primaries span no space.
    [[nodiscard]] static ColorProfilePtr fromGamma(const Primaries& primaries, double gamma);

    [[nodiscard]] const std::vector<std::uint8_t>& icc() const { return m_icc; }
    [[nodiscard]] Model model() const { return m_model; }
    [[nodiscard]] std::size_t hash() const { return m_hash; }

    /// The same space, byte for byte; the creation date in the header does not count.
    friend bool operator==(const ColorProfile& a, const ColorProfile& b);

private:
    ColorProfile(std::vector<std::uint8_t> icc, Model model);

    std::vector<std::uint8_t> m_icc;
    Model m_model;
    std::size_t m_hash;
};

} // namespace kelvara
