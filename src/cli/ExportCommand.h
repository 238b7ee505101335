#pragma once

#include "cli/CopyingCommand.h"
#include "cli/PresetArgument.h"
#include "presets/EditFile.h"

namespace kelvara::cli {

/// `kelvara-cli export`.
class ExportCommand : public CopyingCommand {
public:
    /// Both outlive it.
    ExportCommand(CLI::App& app, FileSystem& files);

private:
    /// The light edits of the photos below the folder.
    [[nodiscard]] Result<EditFile::Edits, CommandError> edits(const FileURL& folder) const;
    Result<void, CommandError> complete(CopyService::PlanRequest& request) const override;
    CopyService::Ratings ratings(const std::vector<PhotoItem>& items,
                                 const std::stop_token& stop) const override;

    ExportSettings m_settings;
    int m_bitDepth = 8;
    PresetArgument m_preset;
    bool m_appliesEdits = false;
    std::string m_editFile; ///< Empty for the window's.
};

} // namespace kelvara::cli
