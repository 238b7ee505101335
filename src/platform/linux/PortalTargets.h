#pragma once

#include "platform/ShareTargets.h"
#include "platform/linux/DesktopPortal.h"

namespace kelvara {

/// A new e-mail with the files attached, in the program that the user writes with; through the command
/// "xdg-email" where the portal knows no e-mail.
class EmailTarget : public ShareTargets {
public:
    /// As many descriptors as a message bus lets through at once.
    static constexpr std::size_t maximumFiles = 16;

    /// `portal` outlives it.
    explicit EmailTarget(DesktopPortal& portal, QString command = QStringLiteral("xdg-email"))
        : m_portal{portal}, m_command{std::move(command)} {}

    void find(std::function<void(std::vector<ShareTarget>)> onFound) override;
    void send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) override;

private:
    DesktopPortal& m_portal;
    QString m_command;
};

/// A program that the user chooses in the portal's dialog, for one file.
class OtherProgramTarget : public ShareTargets {
public:
    /// `portal` outlives it.
    explicit OtherProgramTarget(DesktopPortal& portal) : m_portal{portal} {}

    void find(std::function<void(std::vector<ShareTarget>)> onFound) override;
    /// All but the first file are left alone.
    void send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) override;

private:
    DesktopPortal& m_portal;
};

} // namespace kelvara
