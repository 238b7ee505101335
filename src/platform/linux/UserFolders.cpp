#include "platform/linux/UserFolders.h"

#include <cstdlib>

namespace kelvara {

FileURL userDataFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data != nullptr && *data == '/') return FileURL::standardized(data);
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home != '/') return {};
    return FileURL::standardized(home).child(".local").child("share");
}

} // namespace kelvara
