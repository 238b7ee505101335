#pragma once

#include "platform/SharePicker.h"
#include "platform/ShareTargets.h"

#include <QCoreApplication>
#include <QPointer>

#include <memory>

class QMenu;
class QWidget;

namespace kelvara {

class Desktop;

/// A menu of what the desktop can do with the files, beside the place they are shared from. One at a time: a
/// request takes the place of the one before.
class SharePickerMenu : public SharePicker {
    Q_DECLARE_TR_FUNCTIONS(SharePickerMenu)

public:
    /// Everything outlives it.
    struct Services {
        Desktop& desktop;
        ShareTargets& email;
        ShareTargets& otherProgram; ///< Takes one file.
        ShareTargets& nearby;
        ShareTargets& bluetooth;
    };

    explicit SharePickerMenu(const Services& services) : m_services{services} {}
    ~SharePickerMenu() override;

    /// The window that menus belong to.
    void setWindow(QWidget* window) { m_window = window; }

    void share(std::vector<FileURL> files, const std::optional<Anchor>& anchor, OnEnd onEnd) override;
    void shareNearby(std::vector<FileURL> files, OnEnd onEnd, std::function<void()> onUnavailable) override;

private:
    /// What is handed over, and who wants to know.
    struct Parcel {
        std::vector<FileURL> files;
        OnEnd onEnd;
    };
    struct Device {
        ShareTargets* service;
        ShareTarget target;
        QStringView symbol;
    };
    struct Search;

    void begin();
    void findDevices(std::function<void(const std::vector<Device>&)> onFound);
    void addTarget(ShareTargets& service, QStringView symbol, const QString& title, const Parcel& parcel);
    void addDevices(const std::vector<Device>& devices, const Parcel& parcel);
    void addCopying(const Parcel& parcel);
    void open(const std::optional<Anchor>& anchor);

    Services m_services;
    QPointer<QWidget> m_window;
    QPointer<QMenu> m_menu; // of the newest request, hidden until it opens
};

} // namespace kelvara
