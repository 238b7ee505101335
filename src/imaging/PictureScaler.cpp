#include "imaging/PictureScaler.h"

#include "imaging/WeightedSums.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <numbers>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace kelvara {
namespace {

/// The source pixels along one axis that each result pixel is a weighted sum of.
std::vector<WeightedSums::Stretch> stretches(int from, int to, std::vector<float>& weights) {
    const auto sinc = [](double x) {
        return x == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
    };
    const double step = static_cast<double>(from) / to;
    constexpr double large = 4; // from which on nobody sees a difference, but more lobes take long
    const double lobes = step < large ? 3 : 1;
    std::vector<WeightedSums::Stretch> result;
    for (int i = 0; i < to; ++i) {
        const double middle = (i + 0.5) * step - 0.5;
        const int first = std::max(0, static_cast<int>(std::ceil(middle - lobes * step)));
        const int last = std::min(from - 1, static_cast<int>(std::floor(middle + lobes * step)));
        result.push_back({first, last - first + 1, weights.size()});
        double sum = 0;
        std::vector<double> values;
        for (int pixel = first; pixel <= last; ++pixel) {
            const double distance = (pixel - middle) / step;
            values.push_back(sinc(distance) * sinc(distance / lobes));
            sum += values.back();
        }
        for (const double value : values) weights.push_back(static_cast<float>(value / sum));
    }
    return result;
}

/// Scales rows as they come, keeping as many as a result row is made of.
class PictureScaler {
public:
    PictureScaler(PixelSize from, PixelFormat format, Bitmap& to)
        : m_to{to}, m_format{format}, m_columns{stretches(from.width, to.width(), m_columnWeights)},
          m_rows{stretches(from.height, to.height(), m_rowWeights)},
          m_samples(static_cast<std::size_t>(from.width) * 4), m_rowBytes{(m_samples + WeightedSums::more) *
                                                                          bytesPerPixel(format) / 4},
          m_kept(static_cast<std::size_t>(std::ranges::max_element(m_rows, {}, &Stretch::count)->count)),
          m_ring(m_kept * m_rowBytes), m_sums(m_samples + WeightedSums::more) {
        if (format == PixelFormat::bgrx16 || to.format() == PixelFormat::bgrx8) return;
        constexpr float sixteenBits = 65535.0F / 255;
        for (auto& weight : m_rowWeights) weight *= sixteenBits;
    }

    /// Where the next source row goes, from the top.
    [[nodiscard]] std::span<std::uint8_t> nextRow() {
        return {slot(m_nextRow), m_samples * bytesPerPixel(m_format) / 4};
    }
    /// The row is there.
    void addRow() {
        ++m_nextRow;
        while (m_resultRow < m_to.height()) {
            const auto& stretch = m_rows[static_cast<std::size_t>(m_resultRow)];
            if (m_nextRow < stretch.first + stretch.count) break;
            finishRow(stretch);
        }
    }

private:
    using Stretch = WeightedSums::Stretch;

    [[nodiscard]] std::uint8_t* slot(int row) {
        return m_ring.data() + static_cast<std::size_t>(row) % m_kept * m_rowBytes;
    }
    void finishRow(const Stretch& stretch) {
        m_taken.clear();
        for (int i = 0; i < stretch.count; ++i) m_taken.push_back(slot(stretch.first + i));
        const auto* weights = m_rowWeights.data() + stretch.weights;
        const auto row = m_to.row(m_resultRow++);
        WeightedSums::ofRows(m_format, m_taken, weights, m_sums.data(), m_samples);
        WeightedSums::ofPixels(m_sums.data(), m_columns, m_columnWeights.data(), m_to.format(), row.data());
    }

    Bitmap& m_to;
    PixelFormat m_format; // of the source rows
    std::vector<float> m_columnWeights, m_rowWeights;
    std::vector<Stretch> m_columns, m_rows;
    std::size_t m_samples;  // of a source row
    std::size_t m_rowBytes; // with what vector code may read beyond it
    std::size_t m_kept;
    std::vector<std::uint8_t> m_ring;         // the last source rows
    std::vector<const std::uint8_t*> m_taken; // those of one result row
    std::vector<float> m_sums;                // of them
    int m_nextRow = 0;
    int m_resultRow = 0;
};

/// Grey for rows that are missing, with the fourth numbers that all pixels have.
void fillGrey(std::span<std::uint8_t> row, PixelFormat format) {
    constexpr std::uint8_t grey = 128, most = 255;
    std::ranges::fill(row, grey);
    const auto pixel = bytesPerPixel(format), sample = pixel / 4;
    for (auto fourth = pixel - sample; fourth < row.size(); fourth += pixel)
        std::ranges::fill(row.subspan(fourth, sample), most);
}

} // namespace

std::unique_ptr<Bitmap> collectRows(PixelSize given, PixelSize wanted, ColorProfilePtr profile,
                                    const std::stop_token& stop,
                                    const std::function<bool(int y, std::uint8_t* row)>& readRow,
                                    PixelFormat format, std::optional<PixelFormat> scaledFormat) {
    const auto isScaled = given != wanted;
    auto result =
        Bitmap::create(wanted, std::move(profile), isScaled ? scaledFormat.value_or(format) : format);
    if (!result) return nullptr;
    std::optional<PictureScaler> scaler;
    if (isScaled) scaler.emplace(given, format, *result);
    bool hasEnded = false;
    for (int y = 0; y < given.height; ++y) {
        if (stop.stop_requested()) return nullptr;
        const auto row = scaler ? scaler->nextRow() : result->row(y);
        if (!hasEnded && !readRow(y, row.data())) {
            if (y == 0) return nullptr;
            hasEnded = true;
        }
        if (hasEnded) fillGrey(row, format);
        if (scaler) scaler->addRow();
    }
    return result;
}

BitmapPtr scaledDown(BitmapPtr bitmap, int maximum) {
    if (!bitmap || bitmap->size().longestSide() <= maximum) return bitmap;
    const auto copyRow = [&bitmap](int y, std::uint8_t* row) {
        std::memcpy(row, bitmap->row(y).data(), bitmap->rowBytes());
        return true;
    };
    return collectRows(bitmap->size(), bitmap->size().fittedTo(maximum), bitmap->profile(), {}, copyRow,
                       bitmap->format());
}

} // namespace kelvara
