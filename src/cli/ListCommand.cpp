#include "cli/ListCommand.h"

#include "cli/InterruptWatch.h"
#include "cli/MediaFolder.h"
#include "library/ItemFilter.h"
#include "library/ItemOrder.h"
#include "library/LibraryIndex.h"
#include "text/ByteCount.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <numeric>

namespace kelvara::cli {

namespace {

std::string_view kindName(const PhotoItem& item) {
    switch (item.kind().value_or(MediaKind::video)) {
    case MediaKind::raw:
        return "raw";
    case MediaKind::jpeg:
        return "jpeg";
    case MediaKind::heif:
        return "heif";
    case MediaKind::video:
        return "video";
    }
    return {};
}

/// "2024-03-07T20:15:01.250000Z", or null.
JSON dateJSON(const std::optional<FileTime>& date) {
    if (!date) return nullptr;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*date);
    const std::time_t time = seconds.time_since_epoch().count();
    std::tm utc{};
    if (::gmtime_r(&time, &utc) == nullptr) return nullptr;
    return fmt::format("{:%FT%T}.{:06}Z", utc, (*date - seconds).count());
}

/// "2024-03-07 21:15:01" in the user's time zone.
std::string dateText(const std::optional<FileTime>& date) {
    if (!date) return "-";
    const std::time_t time = std::chrono::floor<std::chrono::seconds>(*date).time_since_epoch().count();
    std::tm local{};
    return ::localtime_r(&time, &local) == nullptr ? "-" : fmt::format("{:%F %T}", local);
}

/// The extension as the filter knows it, from "jpg" or ".JPG".
std::string upperExtension(std::string_view typed) {
    if (typed.starts_with('.')) typed.remove_prefix(1);
    std::string upper{typed};
    for (auto& c : upper) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

using Positions = std::vector<std::uint32_t>;

void printItems(const FileURL& folder, const std::vector<PhotoItem>& items, const Positions& shown) {
    std::string text;
    for (const auto position : shown) {
        const auto& item = items[position];
        fmt::format_to(std::back_inserter(text), "{:<19}  {:>9}  {:<5}  {}\n", dateText(item.creationDate),
                       byteCountText(item.fileSize), kindName(item), shownPath(item.url, folder));
    }
    printText(text);
}

void printItemsAsJSON(const FileURL& folder, const std::vector<PhotoItem>& items, const Positions& shown) {
    JSON json;
    setPath(json, "folder", "folderURL", folder);
    json["count"] = shown.size();
    json["totalSize"] = std::accumulate(shown.begin(), shown.end(), std::uint64_t{0},
                                        [&items](std::uint64_t sum, std::uint32_t position) {
                                            return sum + static_cast<std::uint64_t>(items[position].fileSize);
                                        });
    auto& list = json["items"] = JSON::array();
    for (const auto position : shown) {
        const auto& item = items[position];
        JSON entry;
        setPath(entry, "path", "url", item.url);
        entry["kind"] = kindName(item);
        entry["size"] = item.fileSize;
        entry["date"] = dateJSON(item.creationDate);
        list.push_back(std::move(entry));
    }
    printJSON(json);
}

} // namespace

ListCommand::ListCommand(CLI::App& app, FileSystem& files)
    : Command{app, "list", "List the photos and videos below a folder"}, m_files{files} {
    m_command->add_option("FOLDER", m_folder, "A memory card or any other folder")->required();
    m_command->add_option("--sort", m_order, "captureDate (the default), name or fileSize")
        ->check(CLI::IsMember({"captureDate", "name", "fileSize"}))
        ->option_text("ORDER");
    m_command->add_flag("--descending", m_descending, "The newest, last or largest first");
    m_command->add_option("--search", m_searchText, "Only files whose names contain TEXT, in any case")
        ->option_text("TEXT");
    m_command->add_option("--hide", m_hiddenExtensions, "Leave out files of this extension; may be repeated")
        ->option_text("EXT")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

ExitCode ListCommand::run() const {
    const auto folder = resolved(m_folder);
    if (!folder) return fail(folder.error());
    const InterruptWatch interrupt;
    const auto items = mediaFiles(m_files, *folder, interrupt.token());
    if (!items) return fail(items.error());

    std::set<std::string> hidden;
    for (const auto& extension : m_hiddenExtensions) hidden.insert(upperExtension(extension));
    const auto order = sortOrder(m_order).value_or(SortOrder::captureDate);
    const LibraryIndex index{*items, {}};
    const ItemFilter filter{.hiddenExtensions = hidden,
                            .showsOnlyChecked = false,
                            .isChecked = {},
                            .rating = std::nullopt,
                            .ratings = {},
                            .searchText = m_searchText};
    const auto shown = filter.apply(sorted(index, items->size(), order, !m_descending), index);
    m_asJSON ? printItemsAsJSON(*folder, *items, shown) : printItems(*folder, *items, shown);
    return ExitCode::success;
}

} // namespace kelvara::cli
