#pragma once

#include "cli/PictureCommand.h"

#include <string>

namespace kelvara::cli {

/// `kelvara-cli render`: a photo through a develop preset.
class RenderCommand : public PictureCommand {
public:
    /// Both outlive it.
    RenderCommand(CLI::App& app, FileSystem& files);
    [[nodiscard]] ExitCode run() const override;

private:
    std::string m_preset;
    double m_amount = 1;
    int m_size = 0; ///< 0 for the photo's own.
};

} // namespace kelvara::cli
