#pragma once

#include "library/LibraryTypes.h"

#include <QRect>

#include <optional>
#include <vector>

namespace kelvara {

/// Where the entries of the preset list lie: first "none", then sections of tiles under headers. Logical
/// pixels from the top of the whole list.
class PresetListLayout {
public:
    struct Section {
        std::size_t count = 0;
        bool isExpanded = false;
    };
    struct Entry {
        enum class Kind { none, header, tile };
        Kind kind = Kind::none;
        std::size_t section = 0;
        std::size_t preset = 0; ///< Within the section.
        QRect rect;
    };
    enum class Step { left, right, up, down };

    PresetListLayout() = default;
    /// `titleHeight` is what a tile has below its picture.
    PresetListLayout(int width, int titleHeight, const std::vector<Section>& sections);

    /// From the top to the bottom, each row from the left.
    [[nodiscard]] const std::vector<Entry>& entries() const { return m_entries; }
    [[nodiscard]] int columns() const { return m_columns; }
    [[nodiscard]] int contentHeight() const { return m_height; }
    /// The part of every tile that shows the photo.
    [[nodiscard]] QSize pictureSize() const { return m_pictureSize; }
    /// Entries in a window of this height that is scrolled down by `top`.
    [[nodiscard]] IndexRange visible(int top, int height) const;
    [[nodiscard]] std::optional<std::size_t> indexAt(const QPoint& point) const;
    /// The neighbour; the entry itself at an end.
    [[nodiscard]] std::size_t neighbour(std::size_t index, Step step) const;
    /// Where to scroll so that the entry is whole, from `top`.
    [[nodiscard]] int topThatShows(std::size_t index, int top, int height) const;

private:
    void addTiles(std::size_t section, std::size_t count, int tileHeight);

    std::vector<Entry> m_entries;
    QSize m_pictureSize;
    int m_columns = 0;
    int m_height = 0;
};

} // namespace kelvara
