#include "imaging/AreaScaler.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace kelvara {
namespace {

// Fixed point: a row scaled across keeps 8 bits below the point, so that the sums of both directions of 8-bit
// samples fit 32 bits.
constexpr unsigned weightBits = 14;
constexpr std::uint32_t weightOne = 1U << weightBits;
constexpr unsigned acrossShift = weightBits - 8;
constexpr unsigned resultShift = weightBits + 8;

/// The source pixels that each result pixel covers along one axis.
struct Axis {
    struct Cover {
        int first;
        int count;
        std::size_t weights; ///< Index of the first one's weight; those of a cover sum to one.
    };

    Axis(int from, int to);

    std::vector<Cover> covers;
    std::vector<std::uint32_t> weights;
};

Axis::Axis(int from, int to) {
    const double step = static_cast<double>(from) / to;
    for (int i = 0; i < to; ++i) {
        const double begin = i * step;
        const double end = i + 1 == to ? from : (i + 1) * step;
        const int first = std::min(static_cast<int>(begin), from - 1);
        const int last = std::max(first, std::min(static_cast<int>(std::ceil(end)), from) - 1);
        covers.push_back({first, last - first + 1, weights.size()});
        // Rounded running totals, so that the weights sum to one exactly.
        std::uint32_t given = 0;
        for (int pixel = first; pixel <= last; ++pixel) {
            const double covered = (std::min(end, pixel + 1.0) - begin) / (end - begin);
            const auto total =
                pixel == last ? weightOne : static_cast<std::uint32_t>(std::lround(covered * weightOne));
            weights.push_back(total - given);
            given = total;
        }
    }
}

class AreaScaler {
public:
    virtual ~AreaScaler() = default;
    /// The next source row from the top. Rows beyond the last count for nothing.
    virtual void addRow(const std::uint8_t* row) = 0;
};

/// `Sum` holds a sample with the bits of both directions' weights.
template <typename Sample, typename Sum> class SampleScaler : public AreaScaler {
public:
    SampleScaler(PixelSize from, Bitmap& to)
        : m_to{to}, m_columns{from.width, to.width()}, m_rows{from.height, to.height()},
          m_across(static_cast<std::size_t>(to.width()) * 4), m_sums(m_across.size()) {}

    void addRow(const std::uint8_t* row) override;

private:
    void scaleAcross(const Sample* row);
    void finishRow();

    Bitmap& m_to;
    Axis m_columns;
    Axis m_rows;
    std::vector<std::uint32_t> m_across; // one source row scaled across
    std::vector<Sum> m_sums;             // the result row being collected
    int m_nextRow = 0;
    int m_resultRow = 0;
};

template <typename Sample, typename Sum> void SampleScaler<Sample, Sum>::addRow(const std::uint8_t* row) {
    if (m_resultRow == m_to.height()) return;
    scaleAcross(reinterpret_cast<const Sample*>(row));
    // A source row at the border of two result rows counts for both.
    while (m_resultRow < m_to.height()) {
        const auto& cover = m_rows.covers[static_cast<std::size_t>(m_resultRow)];
        if (m_nextRow < cover.first) break;
        const int index = m_nextRow - cover.first;
        const auto weight = m_rows.weights[cover.weights + static_cast<std::size_t>(index)];
        for (std::size_t i = 0; i < m_sums.size(); ++i) m_sums[i] += Sum{m_across[i]} * weight;
        if (index + 1 < cover.count) break;
        finishRow();
    }
    ++m_nextRow;
}

template <typename Sample, typename Sum> void SampleScaler<Sample, Sum>::scaleAcross(const Sample* row) {
    auto* to = m_across.data();
    const auto* weight = m_columns.weights.data(); // those of all covers follow each other
    for (const auto& cover : m_columns.covers) {
        const auto* from = row + static_cast<std::size_t>(cover.first) * 4;
        std::uint32_t blue = 0, green = 0, red = 0;
        for (int i = 0; i < cover.count; ++i, from += 4, ++weight) {
            blue += from[0] * *weight;
            green += from[1] * *weight;
            red += from[2] * *weight;
        }
        to[0] = blue >> acrossShift;
        to[1] = green >> acrossShift;
        to[2] = red >> acrossShift;
        to[3] = std::uint32_t{std::numeric_limits<Sample>::max()} << 8;
        to += 4;
    }
}

template <typename Sample, typename Sum> void SampleScaler<Sample, Sum>::finishRow() {
    auto* row = reinterpret_cast<Sample*>(m_to.row(m_resultRow++).data());
    constexpr Sum half = Sum{1} << (resultShift - 1);
    for (std::size_t i = 0; i < m_sums.size(); ++i)
        row[i] = static_cast<Sample>((m_sums[i] + half) >> resultShift);
    std::fill(m_sums.begin(), m_sums.end(), Sum{0});
}

std::unique_ptr<AreaScaler> makeScaler(PixelSize from, Bitmap& to) {
    if (to.format() == PixelFormat::bgrx8)
        return std::make_unique<SampleScaler<std::uint8_t, std::uint32_t>>(from, to);
    return std::make_unique<SampleScaler<std::uint16_t, std::uint64_t>>(from, to);
}

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
                                    PixelFormat format) {
    auto result = Bitmap::create(wanted, std::move(profile), format);
    if (!result) return nullptr;
    const bool isScaled = given != wanted;
    std::unique_ptr<AreaScaler> scaler;
    std::vector<std::uint8_t> line;
    if (isScaled) {
        scaler = makeScaler(given, *result);
        line.resize(static_cast<std::size_t>(given.width) * bytesPerPixel(format));
    }
    bool hasEnded = false;
    for (int y = 0; y < given.height; ++y) {
        if (stop.stop_requested()) return nullptr;
        const auto row = isScaled ? std::span{line} : result->row(y);
        if (!hasEnded && !readRow(y, row.data())) {
            if (y == 0) return nullptr;
            hasEnded = true;
        }
        if (hasEnded) fillGrey(row, format);
        if (isScaled) scaler->addRow(row.data());
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
