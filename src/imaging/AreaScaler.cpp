#include "imaging/AreaScaler.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

namespace kelvara {
namespace {

// Fixed point: a row scaled across keeps 8 bits below the point, so that the sums of both directions fit 32
// bits.
constexpr unsigned weightBits = 14;
constexpr std::uint32_t weightOne = 1U << weightBits;
constexpr unsigned acrossShift = weightBits - 8;
constexpr unsigned resultShift = weightBits + 8;

} // namespace

AreaScaler::Axis::Axis(int from, int to) {
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

AreaScaler::AreaScaler(PixelSize from, Bitmap& to)
    : m_to{to}, m_columns{from.width, to.width()}, m_rows{from.height, to.height()},
      m_across(static_cast<std::size_t>(to.width()) * 4), m_sums(m_across.size()) {}

void AreaScaler::addRow(const std::uint8_t* row) {
    if (m_resultRow == m_to.height()) return;
    scaleAcross(row);
    // A source row at the border of two result rows counts for both.
    while (m_resultRow < m_to.height()) {
        const auto& cover = m_rows.covers[static_cast<std::size_t>(m_resultRow)];
        if (m_nextRow < cover.first) break;
        const int index = m_nextRow - cover.first;
        const auto weight = m_rows.weights[cover.weights + static_cast<std::size_t>(index)];
        for (std::size_t i = 0; i < m_sums.size(); ++i) m_sums[i] += m_across[i] * weight;
        if (index + 1 < cover.count) break;
        finishRow();
    }
    ++m_nextRow;
}

void AreaScaler::scaleAcross(const std::uint8_t* row) {
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
        to[3] = 255U << 8;
        to += 4;
    }
}

void AreaScaler::finishRow() {
    const auto row = m_to.row(m_resultRow++);
    constexpr std::uint32_t half = 1U << (resultShift - 1);
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = static_cast<std::uint8_t>((m_sums[i] + half) >> resultShift);
    std::fill(m_sums.begin(), m_sums.end(), 0U);
}

std::unique_ptr<Bitmap> collectRows(PixelSize given, PixelSize wanted, ColorProfilePtr profile,
                                    const std::stop_token& stop,
                                    const std::function<bool(int y, std::uint8_t* row)>& readRow) {
    constexpr std::uint8_t missing = 128;
    auto result = Bitmap::create(wanted, std::move(profile));
    if (!result) return nullptr;
    const bool isScaled = given != wanted;
    std::optional<AreaScaler> scaler;
    std::vector<std::uint8_t> line;
    if (isScaled) {
        scaler.emplace(given, *result);
        line.resize(static_cast<std::size_t>(given.width) * 4);
    }
    bool hasEnded = false;
    for (int y = 0; y < given.height; ++y) {
        if (stop.stop_requested()) return nullptr;
        const auto row = isScaled ? std::span{line} : result->row(y);
        if (!hasEnded && !readRow(y, row.data())) {
            if (y == 0) return nullptr;
            hasEnded = true;
        }
        if (hasEnded) std::ranges::fill(row, missing);
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
    return collectRows(bitmap->size(), bitmap->size().fittedTo(maximum), bitmap->profile(), {}, copyRow);
}

} // namespace kelvara
