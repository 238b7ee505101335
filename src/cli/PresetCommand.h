#pragma once

#include "cli/Command.h"

namespace kelvara::cli {

/// `kelvara-cli preset FILE`
class PresetCommand : public Command {
public:
    explicit PresetCommand(CLI::App& app);
    [[nodiscard]] ExitCode run() const override;

private:
    std::string m_file;
};

} // namespace kelvara::cli
