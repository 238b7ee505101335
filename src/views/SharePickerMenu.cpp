#include "views/SharePickerMenu.h"

#include "platform/Desktop.h"
#include "views/LocalURL.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QScreen>
#include <QWidget>

namespace kelvara {

/// Devices of both kinds, until all have answered.
struct SharePickerMenu::Search {
    std::function<void(const std::vector<Device>&)> onFound;
    int waiting = 2;
    std::vector<Device> devices;
};

namespace {

/// The files as other programs paste them; GNOME's file manager has a list of its own.
QMimeData* pasteable(const std::vector<FileURL>& files) {
    QList<QUrl> urls;
    QByteArray list{"copy"};
    for (const auto& file : files) {
        urls.append(toQUrl(file));
        list += '\n' + urls.back().toEncoded();
    }
    auto* data = new QMimeData;
    data->setUrls(urls);
    data->setData(QStringLiteral("x-special/gnome-copied-files"), list);
    return data;
}

/// A menu that grew while it is open may reach over the lower edge.
void keepOnScreen(QMenu& menu) {
    if (!menu.isVisible()) return;
    const auto bottom = menu.screen()->availableGeometry().bottom();
    if (menu.frameGeometry().bottom() > bottom)
        menu.move(menu.x(), menu.y() - (menu.frameGeometry().bottom() - bottom));
}

} // namespace

SharePickerMenu::~SharePickerMenu() { delete m_menu; }

void SharePickerMenu::share(std::vector<FileURL> files, const std::optional<Anchor>& anchor, OnEnd onEnd) {
    const Parcel parcel{std::move(files), std::move(onEnd)};
    begin();
    addTarget(m_services.email, u"envelope", tr("Email…"), parcel);
    if (parcel.files.size() == 1)
        addTarget(m_services.otherProgram, u"arrow.up.forward.app", tr("Open With…"), parcel);
    addCopying(parcel);
    m_menu->addAction(menuIcon(u"folder"), tr("Show in Finder"), m_menu,
                      [this, file = parcel.files.front()] { m_services.desktop.showInFileManager(file); });
    m_menu->addSeparator();
    auto* looking = m_menu->addAction(tr("Looking for Devices…"));
    looking->setEnabled(false);
    findDevices([this, looking, parcel](const std::vector<Device>& devices) {
        // The line stays where it is, so that nothing moves away under the mouse.
        looking->setText(devices.empty() ? tr("No Devices Nearby") : tr("Devices"));
        addDevices(devices, parcel);
        keepOnScreen(*m_menu);
    });
    open(anchor);
}

void SharePickerMenu::shareNearby(std::vector<FileURL> files, OnEnd onEnd,
                                  std::function<void()> onUnavailable) {
    begin();
    const Parcel parcel{std::move(files), std::move(onEnd)};
    findDevices([this, parcel, onUnavailable = std::move(onUnavailable)](const std::vector<Device>& devices) {
        if (devices.empty()) return onUnavailable();
        if (devices.size() == 1)
            return devices.front().service->send(devices.front().target, parcel.files, parcel.onEnd);
        addDevices(devices, parcel);
        open({});
    });
}

void SharePickerMenu::begin() {
    delete m_menu;
    m_menu = new QMenu{m_window};
    m_menu->setAttribute(Qt::WA_DeleteOnClose);
}

/// Answers only while the menu of this request is there.
void SharePickerMenu::findDevices(std::function<void(const std::vector<Device>&)> onFound) {
    auto search = std::make_shared<Search>();
    search->onFound = std::move(onFound);
    const auto find = [this, search](ShareTargets& service, QStringView symbol) {
        service.find([search, symbol, &service, menu = m_menu](std::vector<ShareTarget> targets) {
            for (auto& target : targets) search->devices.push_back({&service, std::move(target), symbol});
            if (--search->waiting == 0 && menu) search->onFound(search->devices);
        });
    };
    find(m_services.nearby, u"smartphone");
    find(m_services.bluetooth, u"bluetooth");
}

/// The entry can't be chosen before its service has answered, and goes where there is none.
void SharePickerMenu::addTarget(ShareTargets& service, QStringView symbol, const QString& title,
                                const Parcel& parcel) {
    QPointer<QAction> action = m_menu->addAction(menuIcon(symbol), title);
    action->setEnabled(false);
    service.find([&service, action, parcel](const std::vector<ShareTarget>& targets) {
        if (!action) return;
        action->setVisible(!targets.empty());
        if (targets.empty()) return;
        action->setEnabled(true);
        QObject::connect(action, &QAction::triggered, action, [&service, target = targets.front(), parcel] {
            service.send(target, parcel.files, parcel.onEnd);
        });
    });
}

void SharePickerMenu::addDevices(const std::vector<Device>& devices, const Parcel& parcel) {
    for (const auto& device : devices) {
        m_menu->addAction(
            menuIcon(device.symbol), withoutMnemonics(text(device.target.name)), m_menu,
            [device, parcel] { device.service->send(device.target, parcel.files, parcel.onEnd); });
    }
}

void SharePickerMenu::addCopying(const Parcel& parcel) {
    const auto title = tr("Copy %Ln Files", nullptr, static_cast<int>(parcel.files.size()));
    m_menu->addAction(menuIcon(u"doc.on.doc"), title, m_menu, [parcel] {
        QGuiApplication::clipboard()->setMimeData(pasteable(parcel.files));
        parcel.onEnd({});
    });
}

/// Without an anchor at the mouse, as long as that is over the window.
void SharePickerMenu::open(const std::optional<Anchor>& anchor) {
    auto place = QCursor::pos();
    if (anchor) {
        place = {anchor->x, anchor->y + anchor->height};
    } else if (m_window && !m_window->frameGeometry().contains(place)) {
        place = m_window->geometry().center();
    }
    m_menu->popup(place);
}

} // namespace kelvara
