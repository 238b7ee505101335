#include "presets/PresetDrawing.h"

#include "imaging/ColorTransform.h"
#include "imaging/RowSlices.h"
#include "presets/CubeSampling.h"
#include "presets/Grain.h"
#include "presets/LocalContrast.h"
#include "presets/PixelRows.h"
#include "presets/SourceSpace.h"
#include "presets/Vignette.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace kelvara {
namespace {

/// What is drawn at once, small enough for the fastest memory.
struct Chunk {
    static constexpr std::size_t most = Grain::mostPixels;
    static constexpr std::size_t more = 16; // what vector code may touch

    std::array<float, (most + more) * 4> pixels{};
    std::array<float, (most + more) * 4> beyond{};
    std::array<float, most + more> factors{};
    std::array<float, most + more> summands{};
};

/// The picture's way through the cube.
class Coloring {
public:
    /// `cube` outlives it.
    Coloring(const DevelopPreset& preset, const ColorCube& cube, const ColorProfilePtr& profile);
    void apply(Chunk& chunk, std::size_t count) const;

private:
    const ColorCube* m_cube;                    // null when no color changes
    std::shared_ptr<const SourceSpace> m_space; // null for sRGB
    std::optional<ColorCube> m_converted;
    /// Of what sRGB can't hold, which no preset is defined for: as much is kept as the photo itself counts.
    float m_shareBeyond;
};

/// The cube as it is for the numbers of a space whose colours can be converted through tables alone, and
/// therefore no more exactly than its points. Empty when they can't be converted at all.
std::optional<ColorCube> inSpace(const ColorCube& cube, const ColorProfilePtr& profile) {
    constexpr auto wide = PixelFormat::bgrx16;
    constexpr auto input = ColorTransform::Input::bgrx16;
    const auto to = ColorTransform::between(profile, input, ColorProfile::sRGB(), wide);
    const auto from = ColorTransform::between(ColorProfile::sRGB(), input, profile, wide);
    if (!to || !from) return std::nullopt;
    constexpr auto points = ColorCube::points;
    std::vector<std::uint16_t> numbers(ColorCube::entries * 4);
    for (std::size_t i = 0; i < ColorCube::entries; ++i) {
        const std::array<std::size_t, 4> color{i / points / points, i / points % points, i % points, 0};
        for (std::size_t c = 0; c < 4; ++c)
            numbers[i * 4 + c] = static_cast<std::uint16_t>(color[c] * 65535 / (points - 1));
    }
    auto* const bytes = reinterpret_cast<std::uint8_t*>(numbers.data());
    to->convert(bytes, bytes, ColorCube::entries);
    std::vector<float> values((ColorCube::entries + Chunk::more) * 4);
    PixelRows::unpack(numbers.data(), values.data(), ColorCube::entries);
    sampleCube(cube, values.data(), ColorCube::entries);
    const std::vector<float> ones(ColorCube::entries + Chunk::more, 1), zeros(ones.size(), 0);
    PixelRows::pack(values.data(), ones.data(), zeros.data(), numbers.data(), ColorCube::entries);
    from->convert(bytes, bytes, ColorCube::entries);
    PixelRows::unpack(numbers.data(), values.data(), ColorCube::entries);
    values.resize(ColorCube::entries * 4);
    return ColorCube{std::move(values)};
}

Coloring::Coloring(const DevelopPreset& preset, const ColorCube& cube, const ColorProfilePtr& profile)
    : m_cube{cube.isIdentity() ? nullptr : &cube},
      m_shareBeyond{preset.adjustments.isIdentity
                        ? static_cast<float>(1 - std::clamp(preset.amount, 0.0, 1.0))
                        : 0.0F} {
    if (!m_cube || *profile == *ColorProfile::sRGB()) return;
    m_space = SourceSpace::of(profile);
    if (m_space) return;
    m_converted = inSpace(cube, profile);
    if (m_converted) m_cube = &*m_converted;
}

void Coloring::apply(Chunk& chunk, std::size_t count) const {
    if (!m_cube) return;
    if (m_space) m_space->toSRGB(chunk.pixels.data(), chunk.beyond.data(), count);
    sampleCube(*m_cube, chunk.pixels.data(), count);
    if (m_space) m_space->fromSRGB(chunk.pixels.data(), chunk.beyond.data(), m_shareBeyond, count);
}

/// Everything a row needs, for any number of threads.
struct Stages {
    const LocalContrast& contrast;
    const Coloring& coloring;
    const std::optional<Vignette>& vignette;
    const std::optional<Grain>& grain;

    void drawRow(const Bitmap& source, Bitmap& result, int y, const LocalContrast::Rows& contrastRows,
                 Chunk& chunk) const;
};

void unpack(const Bitmap& from, int y, std::size_t x, float* to, std::size_t count) {
    if (from.format() == PixelFormat::bgrx8)
        PixelRows::unpack(from.row(y).data() + x * 4, to, count);
    else
        PixelRows::unpack(from.row16(y).data() + x * 4, to, count);
}

void pack(const Chunk& chunk, Bitmap& to, int y, std::size_t x, std::size_t count) {
    const auto pack = [&](auto* pixels) {
        PixelRows::pack(chunk.pixels.data(), chunk.factors.data(), chunk.summands.data(), pixels, count);
    };
    if (to.format() == PixelFormat::bgrx8)
        pack(to.row(y).data() + x * 4);
    else
        pack(to.row16(y).data() + x * 4);
}

void Stages::drawRow(const Bitmap& source, Bitmap& result, int y, const LocalContrast::Rows& contrastRows,
                     Chunk& chunk) const {
    const auto width = static_cast<std::size_t>(source.width());
    for (std::size_t x = 0; x < width; x += Chunk::most) {
        const auto count = std::min(Chunk::most, width - x);
        const auto left = static_cast<int>(x);
        unpack(source, y, x, chunk.pixels.data(), count);
        contrastRows.apply(left, count, chunk.pixels.data());
        coloring.apply(chunk, count);
        if (vignette) {
            vignette->fill(y, left, count, chunk.factors.data(), chunk.summands.data());
        } else {
            chunk.factors.fill(1);
            chunk.summands.fill(0);
        }
        if (grain) grain->add(y, left, count, chunk.summands.data());
        pack(chunk, result, y, x, count);
    }
}

std::optional<LocalContrast> localContrast(const DevelopPreset& preset, double strength, const Bitmap& source,
                                           const std::stop_token& stop) {
    const double longSide = source.size().longestSide();
    constexpr double most = 100; // what settings beyond all measure come to
    const auto amount = [=](double setting) { return std::clamp(setting * strength, -most, most); };
    const std::array stages{LocalContrast::Stage{amount(preset.look.texture) * 0.6, longSide * 0.004},
                            LocalContrast::Stage{amount(preset.look.clarity) * 0.8, longSide * 0.02}};
    return LocalContrast::make(source, stages, stop);
}

PixelFormat formatOf(Depth depth) { return depth == Depth::eight ? PixelFormat::bgrx8 : PixelFormat::bgrx16; }

/// Draws `source` into `result`, which may be the same. False when memory is short or `stop` was requested.
bool draw(const DevelopPreset& preset, const ColorCube& cube, const Bitmap& source, Bitmap& result,
          const std::stop_token& stop) {
    const auto size = source.size();
    const double strength = std::clamp(preset.amount, 0.0, 1.0);
    const auto contrast = localContrast(preset, strength, source, stop);
    if (!contrast) return false;
    const Coloring coloring{preset, cube, result.profile()};
    std::optional<Vignette> vignette;
    std::optional<Grain> grain;
    if (strength > 0) {
        if (preset.look.vignette) vignette.emplace(*preset.look.vignette, size);
        if (preset.look.grain) grain.emplace(*preset.look.grain, size);
    }
    const Stages stages{*contrast, coloring, vignette, grain};
    const int band = rowsOfBand(size);
    for (int top = 0; top < size.height; top += band) {
        if (stop.stop_requested()) return false;
        const int rows = std::min(band, size.height - top);
        constexpr std::int64_t fewestPixels = 1 << 18;
        forRowSlices(
            rows, std::int64_t{rows} * size.width,
            [&](int begin, int end) {
                Chunk chunk;
                LocalContrast::Rows contrastRows{*contrast};
                for (int y = top + begin; y < top + end; ++y) {
                    contrastRows.moveTo(y);
                    stages.drawRow(source, result, y, contrastRows, chunk);
                }
            },
            fewestPixels);
    }
    return true;
}

} // namespace

int rowsOfBand(PixelSize size) {
    return static_cast<int>(std::clamp<std::int64_t>(mostBandPixels / size.width, 1, size.height));
}

bool changesNothing(const DevelopPreset& preset) {
    return preset.adjustments.isIdentity && (preset.look.isIdentity || !(preset.amount > 0));
}

BitmapPtr drawn(const DevelopPreset& preset, const ColorCube& cube, const Bitmap& source, Depth depth,
                const std::stop_token& stop) {
    const auto profile = source.profile() ? source.profile() : ColorProfile::sRGB();
    std::shared_ptr<Bitmap> result = Bitmap::create(source.size(), profile, formatOf(depth));
    if (!result || !draw(preset, cube, source, *result, stop)) return nullptr;
    return result;
}

BitmapPtr redrawn(const DevelopPreset& preset, const ColorCube& cube, BitmapPtr source, Depth depth,
                  const std::stop_token& stop) {
    if (source.use_count() > 1 || source->format() != formatOf(depth) || !source->profile())
        return drawn(preset, cube, *source, depth, stop);
    auto& own = const_cast<Bitmap&>(*source); // nobody else sees it
    return draw(preset, cube, own, own, stop) ? source : nullptr;
}

} // namespace kelvara
