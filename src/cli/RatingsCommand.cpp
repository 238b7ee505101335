#include "cli/RatingsCommand.h"

#include "cli/InterruptWatch.h"
#include "cli/MediaFolder.h"
#include "library/ItemOrder.h"
#include "library/LibraryIndex.h"
#include "services/XMPService.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <iterator>

namespace kelvara::cli {

namespace {

/// The first RAW file of every shot that has one, in the order in which the window lists them at first.
std::vector<FileURL> rawFiles(const std::vector<PhotoItem>& items) {
    const LibraryIndex index{items, {}};
    std::vector<bool> isTaken(index.shots().size());
    std::vector<FileURL> files;
    for (const auto position : sorted(index, items.size(), SortOrder::captureDate, true)) {
        const auto shot = index.shotID(position);
        if (isTaken[shot] || items[position].kind() != MediaKind::raw) continue;
        isTaken[shot] = true;
        files.push_back(items[position].url);
    }
    return files;
}

} // namespace

RatingsCommand::RatingsCommand(CLI::App& app, FileSystem& files)
    : Command{app, "ratings", "List the stars of the RAW photos below a folder"}, m_files{files} {
    m_command->add_option("FOLDER", m_folder, "A memory card or any other folder")->required();
}

ExitCode RatingsCommand::run() const {
    const auto folder = resolved(m_folder);
    if (!folder) return fail(folder.error());
    const InterruptWatch interrupt;
    const auto items = mediaFiles(m_files, *folder, interrupt.token());
    if (!items) return fail(items.error());

    const auto files = rawFiles(*items);
    std::vector<FileURL> sidecars;
    for (const auto& file : files) sidecars.push_back(file.stemKey());
    const auto ratings = XMPService{m_files}.readRatings(sidecars, interrupt.token());
    if (interrupt.token().stop_requested()) return fail({"Cancelled", ExitCode::interrupted});

    JSON json;
    setPath(json, "folder", "folderURL", *folder);
    json["count"] = files.size();
    auto& shots = json["shots"] = JSON::array();
    std::string text;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const auto found = ratings.find(sidecars[i]);
        const int stars = found == ratings.end() ? 0 : found->second.rawValue();
        fmt::format_to(std::back_inserter(text), "{}  {}\n", stars, shownPath(files[i], *folder));
        JSON entry;
        setPath(entry, "path", "url", files[i]);
        setPath(entry, "sidecar", "sidecarURL", sidecars[i]);
        entry["stars"] = stars;
        shots.push_back(std::move(entry));
    }
    m_asJSON ? printJSON(json) : printText(text);
    return ExitCode::success;
}

} // namespace kelvara::cli
