#pragma once

#include "cli/Command.h"

namespace kelvara::cli {

/// `kelvara-cli volumes`: what is mounted, as the sidebar lists it.
class VolumesCommand : public Command {
public:
    explicit VolumesCommand(CLI::App& app);

    ExitCode run() const override;
};

} // namespace kelvara::cli
