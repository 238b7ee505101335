#include "cli/EjectCommand.h"

#include "cli/DesktopVolumes.h"
#include "cli/MediaFolder.h"
#include "text/Localized.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace kelvara::cli {

namespace {

/// The volume that is mounted there, or else the only one of that name.
Result<VolumeInfo, std::string> findVolume(const std::vector<VolumeInfo>& volumes, const std::string& typed) {
    const auto place = resolved(typed);
    const auto mounted = std::find_if(volumes.begin(), volumes.end(), [&](const VolumeInfo& volume) {
        return place && volume.url == *place;
    });
    if (mounted != volumes.end()) return *mounted;

    const auto isCalledSo = [&](const VolumeInfo& volume) { return volume.name == typed; };
    const auto named = std::find_if(volumes.begin(), volumes.end(), isCalledSo);
    if (named == volumes.end()) return Failure{fmt::format("No volume “{}” is mounted.", typed)};
    if (std::any_of(named + 1, volumes.end(), isCalledSo)) {
        return Failure{
            fmt::format("Several volumes are called “{}”. Say where the one to eject is mounted.", typed)};
    }
    return *named;
}

} // namespace

EjectCommand::EjectCommand(CLI::App& app) : Command{app, "eject", "Unmount and eject a card or disk"} {
    m_command->add_option("VOLUME", m_volume, "Its mount point or its name")->required();
}

ExitCode EjectCommand::run() const {
    DesktopVolumes desktop;
    const auto volume = findVolume(desktop.list(), m_volume);
    if (!volume) return fail({printable(volume.error())});
    if (const auto ejected = desktop.eject(volume->url); !ejected) {
        return fail(
            {printable(localized("Couldn't eject “") + volume->name + localized("”: ") + ejected.error())});
    }
    if (m_asJSON) {
        JSON json;
        json["name"] = volume->name;
        setPath(json, "path", "url", volume->url);
        printJSON(json);
    }
    return ExitCode::success;
}

} // namespace kelvara::cli
