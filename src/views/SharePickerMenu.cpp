#include "views/SharePickerMenu.h"

#include "platform/Desktop.h"
#include "views/LocalURL.h"
#include "views/Symbols.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QWidget>

namespace kelvara {

namespace {

/// The files as other programs paste them, the GNOME file manager included.
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

} // namespace

SharePickerMenu::~SharePickerMenu() { delete m_menu; }

QMenu* SharePickerMenu::makeMenu() {
    delete m_menu;
    m_menu = new QMenu{m_window};
    m_menu->setAttribute(Qt::WA_DeleteOnClose);
    return m_menu;
}

QPoint SharePickerMenu::place(const std::optional<Anchor>& anchor) const {
    if (anchor) return {anchor->x, anchor->y + anchor->height};
    const auto mouse = QCursor::pos();
    if (!m_window || m_window->frameGeometry().contains(mouse)) return mouse;
    return m_window->geometry().center();
}

void SharePickerMenu::share(std::vector<FileURL> files, const std::optional<Anchor>& anchor, OnEnd onEnd) {
    auto* menu = makeMenu();
    menu->addAction(symbolIcon(u"doc.on.doc", &Theme::text),
                    tr("Copy %n Files", nullptr, static_cast<int>(files.size())), menu, [files, onEnd] {
                        QGuiApplication::clipboard()->setMimeData(pasteable(files));
                        onEnd({});
                    });
    menu->addAction(symbolIcon(u"folder", &Theme::text), tr("Show in Finder"), menu,
                    [this, file = files.front()] { m_services.desktop.showInFileManager(file); });
    menu->popup(place(anchor));
}

void SharePickerMenu::shareNearby(std::vector<FileURL> files, OnEnd onEnd,
                                  std::function<void()> onUnavailable) {
    static_cast<void>(files);
    static_cast<void>(onEnd);
    onUnavailable();
}

} // namespace kelvara
