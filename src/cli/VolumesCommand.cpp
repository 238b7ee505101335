#include "cli/VolumesCommand.h"

#include "cli/DesktopVolumes.h"
#include "text/ByteCount.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <iterator>

namespace kelvara::cli {

namespace {

std::string bytesText(const std::optional<std::int64_t>& bytes) {
    return bytes ? byteCountText(*bytes) : "-";
}

JSON bytesJSON(const std::optional<std::int64_t>& bytes) { return bytes ? JSON(*bytes) : JSON(nullptr); }

void printVolumes(const std::vector<VolumeInfo>& volumes) {
    std::string text;
    for (const auto& volume : volumes) {
        fmt::format_to(std::back_inserter(text), "{:<9}  {:>9} free of {:>9}  {}  {}\n",
                       volume.isRemovable ? "removable" : "fixed", bytesText(volume.availableCapacity),
                       bytesText(volume.totalCapacity), printable(volume.url.path()), printable(volume.name));
    }
    printText(text);
}

void printVolumesAsJSON(const std::vector<VolumeInfo>& volumes) {
    JSON json;
    json["count"] = volumes.size();
    auto& list = json["volumes"] = JSON::array();
    for (const auto& volume : volumes) {
        JSON entry;
        entry["name"] = volume.name;
        setPath(entry, "path", "url", volume.url);
        entry["removable"] = volume.isRemovable;
        entry["totalCapacity"] = bytesJSON(volume.totalCapacity);
        entry["availableCapacity"] = bytesJSON(volume.availableCapacity);
        setPath(entry, "source", "sourceURL", volume.preferredSourceURL);
        list.push_back(std::move(entry));
    }
    printJSON(json);
}

} // namespace

VolumesCommand::VolumesCommand(CLI::App& app) : Command{app, "volumes", "List the mounted cards and disks"} {}

ExitCode VolumesCommand::run() const {
    const auto volumes = DesktopVolumes{}.list();
    m_asJSON ? printVolumesAsJSON(volumes) : printVolumes(volumes);
    return ExitCode::success;
}

} // namespace kelvara::cli
