#include "services/CopyNames.h"

#include "text/CaseFolding.h"

#include <ctime>
#include <fmt/format.h>

namespace kelvara {

namespace {

/// The start of `text`, at most `length` bytes, not cut within a character.
std::string_view shortened(std::string_view text, std::size_t length) {
    if (text.size() <= length) return text;
    const auto isWithinCharacter = [text](std::size_t at) { return (text[at] & 0xC0) == 0x80; };
    for (int i = 0; i < 3 && length > 0 && isWithinCharacter(length); ++i) --length;
    return text.substr(0, length);
}

} // namespace

std::string dateFolderName(std::optional<FileTime> date) {
    std::tm day{};
    if (!date) return "Undated";
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(*date).time_since_epoch().count();
    if (::localtime_r(&seconds, &day) == nullptr) return "Undated";
    return fmt::format("{:04}-{:02}-{:02}", std::int64_t{day.tm_year} + 1900, day.tm_mon + 1, day.tm_mday);
}

std::string numberedName(const FileURL& source, unsigned number) {
    auto ending = number > 0 ? fmt::format("-{}", number) : std::string{};
    if (!source.extension().empty()) ending.append(".").append(source.extension());
    const auto room = ending.size() < maximumNameLength ? maximumNameLength - ending.size() : 0;
    return std::string{shortened(source.stem(), room)} + ending;
}

FileURL temporaryURL(const FileURL& destination) {
    constexpr std::string_view extension = "partial";
    if (destination.name().size() + 1 + extension.size() <= maximumNameLength) {
        return destination.appendingExtension(extension);
    }
    const auto ending = fmt::format("~{:016x}.{}", destination.hash(), extension);
    const auto start = shortened(destination.name(), maximumNameLength - ending.size());
    return destination.parent().child(std::string{start} + ending);
}

bool DestinationNames::isEarlierCopy(const FileURL& candidate, const FileStatus& status,
                                     const PhotoItem& item) const {
    if (status.kind != FileStatus::Kind::file || status.size != item.fileSize) return false;
    if (!m_verifies) return true;
    const auto isSame = m_files.haveSameContents(item.url, candidate, m_stop);
    return isSame ? *isSame : isSame.error().wasCancelled(); // cancelled: an end to looking further
}

DestinationNames::Found DestinationNames::resolve(const PhotoItem& item, const FileURL& folder) {
    for (unsigned number = 0;; ++number) {
        auto candidate = folder.child(numberedName(item.url, number));
        auto key = caseFolded(candidate.path());
        if (m_reserved.contains(key)) continue;

        // A place that can't be looked at counts as free: the copy's own error then says what is wrong with
        // it, and nothing is ever replaced.
        const auto existing = m_files.status(candidate);
        if (existing && !isEarlierCopy(candidate, *existing, item)) continue;
        m_reserved.insert(std::move(key));
        if (existing) return {std::move(candidate), CopyService::Plan::SkipExisting{}};
        return {std::move(candidate), CopyService::Plan::Copy{m_verifies}};
    }
}

FileURL DestinationNames::unused(const FileURL& photo, std::string_view extension, const FileURL& folder) {
    for (unsigned number = 0;; ++number) {
        auto candidate = folder.child(numberedName(photo.withExtension(extension), number));
        auto key = caseFolded(candidate.path());
        if (m_reserved.contains(key) || m_files.status(candidate)) continue;
        m_reserved.insert(std::move(key));
        return candidate;
    }
}

} // namespace kelvara
