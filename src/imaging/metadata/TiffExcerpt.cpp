#include "imaging/metadata/TiffExcerpt.h"

#include "imaging/codecs/TiffReader.h"
#include "imaging/codecs/TiffTags.h"

#include <algorithm>
#include <deque>
#include <utility>
#include <vector>

namespace kelvara {
namespace {

constexpr std::uint64_t pageSize = std::uint64_t{16} * 1024;
constexpr std::uint64_t frontSize = std::uint64_t{64} * 1024; // where most files have everything
constexpr std::uint64_t readLimit = std::uint64_t{8} * 1024 * 1024;
/// Beyond it no file has its directories, and a forged maker note could claim all of it for each of its tags.
constexpr std::uint64_t sizeLimit = std::uint64_t{8} * 1024 * 1024;
constexpr std::uint64_t valueLimit = std::uint64_t{256} * 1024;
constexpr std::uint64_t makerNoteLimit = std::uint64_t{1024} * 1024;
/// What the values of all directories may add up to: readers copy each of them.
constexpr std::uint64_t valuesLimit = std::uint64_t{16} * 1024 * 1024;

/// Goes through the directories and notes which pages they need.
class Plan {
public:
    Plan(TiffReader reader, std::uint64_t fileSize)
        : m_reader{std::move(reader)},
          m_pages(static_cast<std::size_t>((std::min(fileSize, sizeLimit) + pageSize - 1) / pageSize)) {
        want(0, frontSize);
        std::deque<std::uint64_t> pending{m_reader.firstDirectory()};
        while (!pending.empty() && m_values <= valuesLimit) {
            const auto offset = pending.front();
            pending.pop_front();
            const auto directory = m_reader.directory(offset);
            if (!directory) continue;
            want(offset, 2 + directory->entries.size() * 12 + 4);
            for (const auto& entry : directory->entries) visit(entry);
            for (const auto tag : {TiffTag::subDirectories, TiffTag::exifDirectory, TiffTag::gpsDirectory,
                                   TiffTag::interoperabilityDirectory}) {
                for (const auto child : m_reader.numbers(*directory, tag)) pending.push_back(child);
            }
            if (directory->next != 0) pending.push_back(directory->next);
        }
    }

    /// Whether each page is needed, without unneeded ones at the end; none of a forgery.
    [[nodiscard]] std::vector<bool> pages() && {
        if (m_values > valuesLimit) m_pages.clear();
        while (!m_pages.empty() && !m_pages.back()) m_pages.pop_back();
        return std::move(m_pages);
    }

private:
    void visit(const TiffDirectory::Entry& entry) {
        const auto size = entry.byteCount();
        const auto limit = entry.tag == TiffTag::makerNote ? makerNoteLimit : valueLimit;
        want(entry.valueOffset, std::min(size, limit));
        // Of a larger value, such as a picture in a tag, the reader copies what lies within the excerpt.
        if (entry.valueOffset + size <= m_pages.size() * pageSize) m_values += size;
    }

    void want(std::uint64_t offset, std::uint64_t size) {
        if (size == 0) return;
        for (auto page = offset / pageSize; page <= (offset + size - 1) / pageSize && page < m_pages.size();
             ++page) {
            if (m_pages[page]) continue;
            if (++m_wanted > readLimit / pageSize) return;
            m_pages[page] = true;
        }
    }

    TiffReader m_reader;
    std::vector<bool> m_pages;
    std::uint64_t m_wanted = 0;
    std::uint64_t m_values = 0;
};

} // namespace

std::optional<TiffExcerpt> TiffExcerpt::read(const ByteRange& file) {
    auto reader = TiffReader::open(file);
    if (!reader) return std::nullopt;
    Plan plan{std::move(*reader), file.size()};
    const auto pages = std::move(plan).pages();
    const auto size = static_cast<std::size_t>(std::min(pages.size() * pageSize, file.size()));
    auto* const bytes = static_cast<std::uint8_t*>(std::calloc(std::max<std::size_t>(size, 1), 1));
    if (!bytes) return std::nullopt;
    TiffExcerpt excerpt{bytes, size};
    for (std::size_t page = 0; page < pages.size();) {
        auto end = page;
        while (end < pages.size() && pages[end]) ++end;
        const auto from = page * pageSize;
        const auto to = std::min(end * pageSize, size);
        if (from < to && file.read(from, {bytes + from, to - from}) != to - from) return std::nullopt;
        page = std::max(end, page + 1);
    }
    return excerpt;
}

} // namespace kelvara
