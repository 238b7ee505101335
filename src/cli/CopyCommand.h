#pragma once

#include "cli/CopyingCommand.h"

namespace kelvara::cli {

/// `kelvara-cli copy`.
class CopyCommand : public CopyingCommand {
public:
    /// Both outlive it.
    CopyCommand(CLI::App& app, FileSystem& files);

private:
    Result<void, CommandError> complete(CopyService::PlanRequest& request) const override;
    CopyService::Ratings ratings(const std::vector<PhotoItem>& items,
                                 const std::stop_token& stop) const override;

    bool m_verifies = false;
};

} // namespace kelvara::cli
