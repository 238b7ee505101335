#pragma once

#include "model/PhotoItem.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvara {

/// What sorting, filtering and finding need to know of a list of items, computed once per list so that every
/// change of order or filter is plain arithmetic. Made off the main thread; immutable afterwards.
class LibraryIndex {
public:
    /// The files of one shot: the items that share a stem key.
    struct Shot {
        FileURL stemKey;
        std::optional<FileTime> date; ///< The earliest creation date of its files that have one.
        std::int64_t largestSize = 0; ///< Bytes.
        bool hasRaw = false;
    };

    LibraryIndex() = default;
    /// `locale`: see `NameOrder`. `items` is not kept.
    LibraryIndex(std::span<const PhotoItem> items, const std::string& locale);

    [[nodiscard]] const Shot& shot(std::size_t item) const { return m_shots[m_shotOf[item]]; }
    [[nodiscard]] const std::vector<Shot>& shots() const { return m_shots; }
    /// Where the item's shot stands in `shots`.
    [[nodiscard]] std::uint32_t shotID(std::size_t item) const { return m_shotOf[item]; }
    /// Where the item's file name stands among all names: smaller comes first, equal names are equal.
    [[nodiscard]] std::uint32_t nameRank(std::size_t item) const { return m_nameRanks[item]; }
    /// The file name as `foldedForSearch` gives it.
    [[nodiscard]] std::string_view foldedName(std::size_t item) const {
        return std::string_view{m_foldedNames}.substr(m_foldedStarts[item],
                                                      m_foldedStarts[item + 1] - m_foldedStarts[item]);
    }
    /// The upper-case extensions that occur, in alphabetical order, and which of them is an item's.
    [[nodiscard]] const std::vector<std::string>& extensions() const { return m_extensions; }
    [[nodiscard]] std::uint32_t extensionID(std::size_t item) const { return m_extensionIDs[item]; }

    /// The item's position in `items`, the list this index was made of.
    [[nodiscard]] std::optional<std::size_t> find(const FileURL& url, std::span<const PhotoItem> items) const;

private:
    void groupShots(std::span<const PhotoItem> items);
    void foldNames(std::span<const PhotoItem> items);
    void listExtensions(std::span<const PhotoItem> items);
    void hashPositions(std::span<const PhotoItem> items);

    std::vector<Shot> m_shots;
    std::vector<std::uint32_t> m_shotOf;
    std::vector<std::uint32_t> m_nameRanks;
    std::string m_foldedNames; // one after the other: a search runs through memory in order
    std::vector<std::uint32_t> m_foldedStarts{0};
    std::vector<std::string> m_extensions;
    std::vector<std::uint32_t> m_extensionIDs;
    std::vector<std::uint32_t> m_positions; // open hash table of positions + 1; 0 is an empty place
};

} // namespace kelvara
