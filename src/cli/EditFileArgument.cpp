#include "cli/EditFileArgument.h"

#include "platform/linux/UserFolders.h"

namespace kelvara::cli {

Result<FileURL, CommandError> editFile(const std::string& path) {
    if (!path.empty()) return resolved(path);
    const auto data = userDataFolder();
    if (data.isEmpty()) return Failure{CommandError{"There is no home folder to keep edits in."}};
    return data.child("kelvara").child("Edits.json");
}

} // namespace kelvara::cli
