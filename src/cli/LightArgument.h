#pragma once

#include "model/LightAdjustments.h"

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace kelvara::cli {

/// A command's option that sets light sliders, as often as wanted: "--set exposure=0.35".
class LightArgument {
public:
    LightArgument(CLI::App& command, const std::string& name);
    LightArgument(const LightArgument&) = delete;
    LightArgument& operator=(const LightArgument&) = delete;

    [[nodiscard]] bool isEmpty() const { return m_settings.empty(); }
    /// Leaves the other sliders as they are.
    void setOn(LightAdjustments& light) const;

private:
    std::vector<std::string> m_settings; // checked
};

} // namespace kelvara::cli
