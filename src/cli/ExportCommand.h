#pragma once

#include "cli/CopyingCommand.h"
#include "cli/PresetArgument.h"

namespace kelvara::cli {

/// `kelvara-cli export`.
class ExportCommand : public CopyingCommand {
public:
    /// Both outlive it.
    ExportCommand(CLI::App& app, FileSystem& files);

private:
    Result<void, CommandError> complete(CopyService::PlanRequest& request) const override;
    CopyService::Ratings ratings(const std::vector<PhotoItem>& items,
                                 const std::stop_token& stop) const override;

    ExportSettings m_settings;
    int m_bitDepth = 8;
    PresetArgument m_preset;
};

} // namespace kelvara::cli
