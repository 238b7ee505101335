#pragma once

#include "cli/Command.h"
#include "platform/FileSystem.h"

namespace kelvara::cli {

/// `kelvara-cli look --preset FILE --colors FILE`
class LookCommand : public Command {
public:
    LookCommand(CLI::App& app, const FileSystem& files);
    [[nodiscard]] ExitCode run() const override;

private:
    const FileSystem& m_files;
    std::string m_preset;
    std::string m_colors;
    double m_amount = 1;
};

} // namespace kelvara::cli
