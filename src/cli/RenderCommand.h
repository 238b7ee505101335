#pragma once

#include "cli/LightArgument.h"
#include "cli/PictureCommand.h"
#include "cli/PresetArgument.h"

namespace kelvara::cli {

/// `kelvara-cli render`: a photo through a develop preset and light edits.
class RenderCommand : public PictureCommand {
public:
    /// Both outlive it.
    RenderCommand(CLI::App& app, FileSystem& files);
    [[nodiscard]] ExitCode run() const override;

private:
    PresetArgument m_preset;
    LightArgument m_light;
    int m_size = 0; ///< 0 for the photo's own.
};

} // namespace kelvara::cli
