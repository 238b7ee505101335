#pragma once

#include "cli/Console.h"

#include <CLI/App.hpp>
#include <string>

namespace kelvara::cli {

/// One of the program's subcommands: its arguments, and what it does with them.
class Command {
public:
    virtual ~Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    [[nodiscard]] bool isChosen() const { return m_command->parsed(); }
    /// After the command line has been read.
    virtual ExitCode run() const = 0;

protected:
    /// Adds the subcommand to `app`, which outlives it.
    Command(CLI::App& app, const std::string& name, const std::string& description)
        : m_command{app.add_subcommand(name, description)} {
        m_command->add_flag("--json", m_asJSON, "Print one JSON object");
    }

    CLI::App* m_command;
    bool m_asJSON = false;
};

} // namespace kelvara::cli
