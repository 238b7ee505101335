#include "cli/CopyCommand.h"

#include <CLI/CLI.hpp>

namespace kelvara::cli {

CopyCommand::CopyCommand(CLI::App& app, FileSystem& files)
    : CopyingCommand{app, "copy", "Copy the photos and videos below a folder", files} {
    m_command->add_flag("--verify", m_verifies, "Read each copy back and compare it with the original");
}

Result<void, CommandError> CopyCommand::complete(CopyService::PlanRequest& request) const {
    request.verifies = m_verifies;
    return {};
}

CopyService::Ratings CopyCommand::ratings(const std::vector<PhotoItem>&, const std::stop_token&) const {
    return {}; // the sidecars that hold them are copied
}

} // namespace kelvara::cli
