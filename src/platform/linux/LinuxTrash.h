#pragma once

#include "platform/Trash.h"

namespace kelvara {

/// The Trash that Linux desktops share (the freedesktop.org Trash specification, version 1.0): a folder in
/// the user's home for what lies on the same volume, and one at the top of every other volume.
class LinuxTrash : public Trash {
public:
    /// `homeTrash` is made when it is missing.
    explicit LinuxTrash(FileURL homeTrash = defaultHomeTrash()) : m_homeTrash{std::move(homeTrash)} {}

    Result<void, FileError> moveToTrash(const FileURL& url) override;

    /// "$XDG_DATA_HOME/Trash"; empty for a user without a home.
    [[nodiscard]] static FileURL defaultHomeTrash();

private:
    FileURL m_homeTrash;
};

} // namespace kelvara
