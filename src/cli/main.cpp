#include "cli/AutoToneCommand.h"
#include "cli/CopyCommand.h"
#include "cli/DeleteCommand.h"
#include "cli/EditsCommand.h"
#include "cli/ExportCommand.h"
#include "cli/ListCommand.h"
#include "cli/LookCommand.h"
#include "cli/MetadataCommand.h"
#include "cli/PresetCommand.h"
#include "cli/RateCommand.h"
#include "cli/RatingsCommand.h"
#include "cli/RenderCommand.h"
#include "cli/ThumbnailCommand.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxTrash.h"
#ifdef KELVARA_CLI_VOLUMES
#include "cli/EjectCommand.h"
#include "cli/VolumesCommand.h"
#endif

#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

using namespace kelvara;
using namespace kelvara::cli;

int main(int argc, char** argv) {
    CLI::App app{"Lists, copies, exports, rates, describes and deletes the photos of a memory card or "
                 "folder, as Kelvara does.",
                 "kelvara-cli"};
    app.set_version_flag("--version", "kelvara-cli " KELVARA_VERSION);
    app.require_subcommand(1);
    LinuxFileSystem files;
    LinuxTrash trash;
    std::vector<std::unique_ptr<const Command>> commands;
    commands.push_back(std::make_unique<ListCommand>(app, files));
    commands.push_back(std::make_unique<CopyCommand>(app, files));
    commands.push_back(std::make_unique<ExportCommand>(app, files));
    commands.push_back(std::make_unique<DeleteCommand>(app, files, trash));
    commands.push_back(std::make_unique<RateCommand>(app, files));
    commands.push_back(std::make_unique<RatingsCommand>(app, files));
    commands.push_back(std::make_unique<MetadataCommand>(app));
    commands.push_back(std::make_unique<ThumbnailCommand>(app, files));
    commands.push_back(std::make_unique<PresetCommand>(app));
    commands.push_back(std::make_unique<LookCommand>(app, files));
    commands.push_back(std::make_unique<RenderCommand>(app, files));
    commands.push_back(std::make_unique<AutoToneCommand>(app));
    commands.push_back(std::make_unique<EditsCommand>(app, files));
#ifdef KELVARA_CLI_VOLUMES
    commands.push_back(std::make_unique<VolumesCommand>(app));
    commands.push_back(std::make_unique<EjectCommand>(app));
#endif
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool isQuestion = error.get_exit_code() == 0; // --help or --version, answered by exit()
        (void)app.exit(error);
        return static_cast<int>(isQuestion ? finished(ExitCode::success) : ExitCode::usage);
    }
    for (const auto& command : commands) {
        if (command->isChosen()) return static_cast<int>(finished(command->run()));
    }
    return static_cast<int>(ExitCode::usage);
}
