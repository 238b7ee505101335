#include "platform/linux/DirectIO.h"

#include <fcntl.h>

namespace kelvara {

bool setDirect(const FileDescriptor& file, bool isDirect) {
    const int flags = ::fcntl(file.get(), F_GETFL);
    return flags >= 0 && ::fcntl(file.get(), F_SETFL, isDirect ? flags | O_DIRECT : flags & ~O_DIRECT) == 0;
}

} // namespace kelvara
