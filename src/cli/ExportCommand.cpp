#include "cli/ExportCommand.h"

#include "cli/EditFileArgument.h"
#include "library/LibraryIndex.h"
#include "services/XMPService.h"

#include <CLI/CLI.hpp>
#include <map>

namespace kelvara::cli {

namespace {

/// No format holds longer lines.
constexpr int longestEdge = 65'535;

std::map<std::string, ExportSettings::Format> formatsByName() {
    std::map<std::string, ExportSettings::Format> formats;
    for (const auto format : ExportSettings::formats)
        formats.emplace(ExportSettings::rawValue(format), format);
    return formats;
}

} // namespace

ExportCommand::ExportCommand(CLI::App& app, FileSystem& files)
    : CopyingCommand{app, "export", "Make a picture of every shot below a folder", files},
      m_preset{*m_command, PresetArgument::Need::optional} {
    auto* edits = m_command->add_flag("--edits", m_appliesEdits, "Apply the photos' light edits");
    m_command
        ->add_option("--edit-file", m_editFile, "Where they are kept, if not where the window keeps them")
        ->needs(edits)
        ->option_text("EDITS");
    m_command->add_option("--format", m_settings.format, "jpeg, heif or png")
        ->transform(CLI::CheckedTransformer{formatsByName()})
        ->option_text("FORMAT");
    m_command->add_option("--quality", m_settings.quality, "Of JPEG and HEIF, 0.5 to 1")
        ->check(CLI::Range(ExportSettings::lowestQuality, 1.0))
        ->option_text("NUMBER");
    m_command->add_option("--long-edge", m_settings.longEdge, "The most pixels of a picture's longer side")
        ->check(CLI::Range(1, longestEdge))
        ->option_text("PIXELS");
    m_command->add_option("--bit-depth", m_bitDepth, "8 or 16 bits a channel")
        ->check(CLI::IsMember{{8, 16}})
        ->option_text("BITS");
    m_command->add_flag("!--no-location", m_settings.keepsLocation, "Don't tell where a photo was taken");
}

Result<void, CommandError> ExportCommand::complete(CopyService::PlanRequest& request) const {
    CopyService::Export exportAs{std::nullopt, m_settings};
    exportAs.settings.uses16Bit = m_bitDepth == 16;
    const auto preset = m_preset.load();
    if (!preset) return Failure{preset.error()};
    ExportLook look{*preset, {}};
    if (m_appliesEdits) {
        auto found = edits(*request.source);
        if (!found) return Failure{found.error()};
        look.adjustments = std::move(*found);
    }
    if (look.preset || !look.adjustments.empty()) exportAs.look = std::move(look);
    request.exportAs = std::move(exportAs);
    return {};
}

Result<EditFile::Edits, CommandError> ExportCommand::edits(const FileURL& folder) const {
    const auto file = editFile(m_editFile);
    if (!file) return Failure{file.error()};
    const auto stored = EditFile::read(m_files, *file);
    if (!stored) return Failure{CommandError{printable(message(stored.error()))}};
    // The window keeps them by the path that it was given, which may lead over links.
    EditFile::Edits edits;
    for (const auto& root : {asGiven(givenFolder()), folder}) {
        for (const auto& [photo, light] : *stored) {
            if (!photo.isContained(root)) continue;
            const auto below = photo.path().substr(root.path().size());
            edits.emplace(FileURL::standardized(folder.path() + "/" + below), light);
        }
    }
    return edits;
}

CopyService::Ratings ExportCommand::ratings(const std::vector<PhotoItem>& items,
                                            const std::stop_token& stop) const {
    const LibraryIndex index{items, {}};
    std::vector<FileURL> sidecars;
    for (const auto& shot : index.shots()) {
        if (shot.hasRaw) sidecars.push_back(shot.stemKey);
    }
    const auto found = XMPService{m_files}.readRatings(sidecars, stop);
    CopyService::Ratings ratings;
    for (const auto& item : items) {
        if (const auto stars = found.find(item.url.stemKey()); stars != found.end()) {
            ratings.emplace(item.url, stars->second);
        }
    }
    return ratings;
}

} // namespace kelvara::cli
