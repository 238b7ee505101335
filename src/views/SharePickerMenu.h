#pragma once

#include "platform/SharePicker.h"
#include "platform/ShareTargets.h"

#include <QCoreApplication>
#include <QPointer>

class QMenu;
class QWidget;

namespace kelvara {

class Desktop;

/// A menu of what the desktop can do with the files, beside the place they are shared from. One at a time: a
/// request closes the menu of the one before.
class SharePickerMenu : public SharePicker {
    Q_DECLARE_TR_FUNCTIONS(SharePickerMenu)

public:
    struct Services {
        Desktop& desktop;
    };

    /// Everything outlives it.
    explicit SharePickerMenu(const Services& services) : m_services{services} {}
    ~SharePickerMenu() override;

    /// The window that menus belong to.
    void setWindow(QWidget* window) { m_window = window; }

    void share(std::vector<FileURL> files, const std::optional<Anchor>& anchor, OnEnd onEnd) override;
    void shareNearby(std::vector<FileURL> files, OnEnd onEnd, std::function<void()> onUnavailable) override;

private:
    QMenu* makeMenu();
    [[nodiscard]] QPoint place(const std::optional<Anchor>& anchor) const;

    Services m_services;
    QPointer<QWidget> m_window;
    QPointer<QMenu> m_menu;
};

} // namespace kelvara
