#pragma once

#include "cli/Command.h"

#include <string>

namespace kelvara::cli {

/// `kelvara-cli metadata`: how a photo was taken, and all that its file says about itself.
class MetadataCommand : public Command {
public:
    /// Adds the subcommand to `app`, which outlives it.
    explicit MetadataCommand(CLI::App& app);

    ExitCode run() const override;

private:
    std::string m_file;
    bool m_isFull = false;
};

} // namespace kelvara::cli
