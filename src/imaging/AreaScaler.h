#pragma once

#include "imaging/Bitmap.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

namespace kelvara {

/// Scales a picture down while it arrives row by row: each result pixel is the average of the source area
/// that it covers, so nothing aliases and no full-size copy is held.
class AreaScaler {
public:
    /// `to` is at most as large as `from`, and fits a bitmap.
    AreaScaler(PixelSize from, Bitmap& to);

    /// The next source row from the top: blue, green, red and a fourth byte a pixel. Rows beyond the last
    /// count for nothing.
    void addRow(const std::uint8_t* row);

private:
    /// The source pixels that one result pixel covers along one axis.
    struct Cover {
        int first;
        int count;
        std::size_t weights; ///< Index of the first one's weight; those of a cover sum to one.
    };
    struct Axis {
        Axis(int from, int to);
        std::vector<Cover> covers;
        std::vector<std::uint32_t> weights;
    };
    void scaleAcross(const std::uint8_t* row);
    void finishRow();

    Bitmap& m_to;
    Axis m_columns;
    Axis m_rows;
    std::vector<std::uint32_t> m_across; // one source row scaled across
    std::vector<std::uint32_t> m_sums;   // the result row being collected
    int m_nextRow = 0;
    int m_resultRow = 0;
};

/// A picture of size `wanted` from one of size `given` that comes row by row from the top: `readRow(y, row)`
/// writes `given.width` pixels of four bytes, or returns false when there are no more rows, and the rest
/// becomes grey. Null when there is no row at all, memory is short or `stop` was requested.
[[nodiscard]] std::unique_ptr<Bitmap>
collectRows(PixelSize given, PixelSize wanted, ColorProfilePtr profile, const std::stop_token& stop,
            const std::function<bool(int y, std::uint8_t* row)>& readRow);

/// `bitmap` scaled so that its longest side is at most `maximum`; itself when it is. Null when memory is
/// short.
[[nodiscard]] BitmapPtr scaledDown(BitmapPtr bitmap, int maximum);

} // namespace kelvara
