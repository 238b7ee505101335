#include "cli/EditsCommand.h"

#include "cli/EditFileArgument.h"
#include "presets/EditFile.h"
#include "text/Localized.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace kelvara::cli {

namespace {

/// The photos by the paths that they were given by: the window follows no links in them either, and what it
/// keeps edits by is the path.
Result<std::vector<FileURL>, CommandError> photosAt(const std::vector<std::string>& paths) {
    std::vector<FileURL> photos;
    for (const auto& path : paths) {
        if (const auto file = readableFile(path); !file) return Failure{file.error()};
        photos.push_back(asGiven(path));
    }
    return photos;
}

LightAdjustments editsOf(const FileURL& photo, const EditFile::Edits& edits) {
    const auto found = edits.find(photo.stemKey());
    return found != edits.end() ? found->second : LightAdjustments{};
}

void print(const std::vector<FileURL>& photos, const EditFile::Edits& edits) {
    for (const auto& photo : photos) {
        std::string line;
        const auto light = editsOf(photo, edits);
        for (const auto slider : LightAdjustments::sliders) {
            if (light[slider] != 0)
                line += fmt::format("{} {}  ", LightAdjustments::rawValue(slider),
                                    LightAdjustments::text(slider, light[slider]));
        }
        printText(fmt::format("{}{}\n", line, printable(photo.path())));
    }
}

JSON asJSON(const std::vector<FileURL>& photos, const EditFile::Edits& edits) {
    auto files = JSON::array();
    for (const auto& photo : photos) {
        JSON file;
        setPath(file, "path", "url", photo);
        file["edits"] = JSON::object();
        const auto light = editsOf(photo, edits);
        for (const auto slider : LightAdjustments::sliders) {
            if (light[slider] != 0)
                file["edits"][std::string{LightAdjustments::rawValue(slider)}] = light[slider];
        }
        files.push_back(std::move(file));
    }
    return files;
}

} // namespace

EditsCommand::EditsCommand(CLI::App& app, FileSystem& files)
    : Command{app, "edits", "Show and change the light edits of photos"}, m_files{files}, m_light{*m_command,
                                                                                                  "--set"} {
    m_command->add_option("FILES", m_photos, "Photos")->required();
    m_command->add_flag("--reset", m_resets, "Take all edits away, before any are set");
    m_command
        ->add_option("--file", m_editFile, "Where the edits are kept, if not where the window keeps them")
        ->option_text("EDITS");
}

ExitCode EditsCommand::run() const {
    const auto photos = photosAt(m_photos);
    if (!photos) return fail(photos.error());
    const auto file = editFile(m_editFile);
    if (!file) return fail(file.error());
    const bool changes = m_resets || !m_light.isEmpty();
    const auto change = [&](const EditFile::Edits* found) {
        EditFile::Edits wanted;
        for (const auto& photo : *photos) {
            auto light = m_resets || !found ? LightAdjustments{} : editsOf(photo, *found);
            m_light.setOn(light);
            wanted.insert_or_assign(photo.stemKey(), light);
        }
        return wanted;
    };
    const auto edits = changes ? EditFile::update(m_files, *file, change) : EditFile::read(m_files, *file);
    if (!edits) {
        const auto reason = printable(message(edits.error()));
        return fail({changes ? localized("Couldn't save the edits: ") + reason : reason});
    }
    if (m_asJSON) {
        JSON json;
        setPath(json, "editFile", "editFileURL", *file);
        json["files"] = asJSON(*photos, *edits);
        printJSON(json);
    } else if (!changes) {
        print(*photos, *edits);
    }
    return ExitCode::success;
}

} // namespace kelvara::cli
