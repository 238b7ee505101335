#pragma once

#include "cli/MediaFolder.h"
#include "presets/DevelopPreset.h"

#include <CLI/App.hpp>
#include <optional>
#include <string>

namespace kelvara::cli {

/// The develop preset in the file that a path on the command line names.
[[nodiscard]] Result<DevelopPreset, CommandError> loadedPreset(const std::string& path);

/// A command's options "--preset" and "--amount".
class PresetArgument {
public:
    enum class Need { required, optional };

    PresetArgument(CLI::App& command, Need need);
    PresetArgument(const PresetArgument&) = delete;
    PresetArgument& operator=(const PresetArgument&) = delete;

    /// The preset at its strength; empty where none is named.
    [[nodiscard]] Result<std::optional<DevelopPreset>, CommandError> load() const;

private:
    std::string m_path;
    double m_amount = 1;
};

} // namespace kelvara::cli
