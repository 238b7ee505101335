#include "cli/RateCommand.h"

#include "cli/MediaFolder.h"
#include "services/XMPService.h"
#include "text/Localized.h"

#include <CLI/CLI.hpp>
#include <array>
#include <fmt/format.h>

namespace kelvara::cli {

RateCommand::RateCommand(CLI::App& app, FileSystem& files)
    : Command{app, "rate", "Give a photo its stars"}, m_files{files} {
    m_command->add_option("FILE", m_file, "A RAW file, or another file of the same shot")->required();
    m_command->add_option("STARS", m_stars, "0 to 5")
        ->required()
        ->check(CLI::IsMember({"0", "1", "2", "3", "4", "5"}))
        ->option_text("STARS");
}

ExitCode RateCommand::run() const {
    const auto file = resolved(m_file);
    if (!file) return fail(file.error());
    const auto status = m_files.status(*file);
    if (!status) return fail({printable(message(status.error()))});
    if (status->kind != FileStatus::Kind::file || !mediaKind(file->extension())) {
        return fail({printable(fmt::format("“{}” isn't a photo or video.", file->name()))});
    }
    if (!hasRaw(*file)) {
        return fail({localized("Lightroom ignores sidecars for files without a RAW, so this rating isn't "
                               "written to disk.")});
    }

    XMPService sidecars{m_files};
    const std::array sidecar{file->stemKey()};
    const auto rating = Rating::fromRawValue(m_stars).value_or(Rating{});
    const auto ratings = sidecars.readRatings(sidecar);
    const auto before = ratings.contains(sidecar[0]) ? ratings.at(sidecar[0]) : Rating{};
    if (before != rating) {
        if (const auto written = sidecars.setRating(rating, sidecar[0]); !written) {
            return fail({printable(fmt::format("{}{}: {}", localized("Couldn't save the rating for "),
                                               file->name(), message(written.error())))});
        }
    }
    if (m_asJSON) {
        JSON json;
        setPath(json, "file", "fileURL", *file);
        setPath(json, "sidecar", "sidecarURL", sidecar[0]);
        json["stars"] = rating.rawValue();
        json["before"] = before.rawValue();
        printJSON(json);
    }
    return ExitCode::success;
}

} // namespace kelvara::cli
