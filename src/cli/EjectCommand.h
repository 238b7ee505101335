#pragma once

#include "cli/Command.h"

#include <string>

namespace kelvara::cli {

/// `kelvara-cli eject`: unmounts a card's or disk's volumes and ejects it.
class EjectCommand : public Command {
public:
    explicit EjectCommand(CLI::App& app);

    ExitCode run() const override;

private:
    std::string m_volume;
};

} // namespace kelvara::cli
