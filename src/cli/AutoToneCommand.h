#pragma once

#include "cli/Command.h"
#include "cli/PresetArgument.h"

#include <string>

namespace kelvara::cli {

/// `kelvara-cli auto-tone`: the light edits for a balanced exposure of a photo.
class AutoToneCommand : public Command {
public:
    /// `app` outlives it.
    explicit AutoToneCommand(CLI::App& app);
    [[nodiscard]] ExitCode run() const override;

private:
    std::string m_file;
    PresetArgument m_preset;
};

} // namespace kelvara::cli
