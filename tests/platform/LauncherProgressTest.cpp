#include "platform/linux/LauncherProgress.h"

#include "platform/EventLoop.h"
#include "platform/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

/// A dock that draws what applications send.
class Dock : public QObject {
    Q_OBJECT

public:
    explicit Dock(QDBusConnection bus) {
        bus.connect({}, {}, QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"),
                    this, SLOT(update(QString, QVariantMap)));
    }
    QStringList updates;

public slots:
    void update(const QString& application, const QVariantMap& values) {
        const auto isVisible = values.value(QStringLiteral("progress-visible")).toBool();
        updates.append(
            application + u' ' +
            (isVisible ? values.value(QStringLiteral("progress")).toString() : QStringLiteral("-")));
    }
};

TEST(LauncherProgressTest, showsWholePercentsAndGoes) {
    PrivateBus bus;
    if (!bus.problem().empty()) GTEST_SKIP() << bus.problem();
    Dock dock{bus.connect()};
    LauncherProgress progress{bus.connect(), QStringLiteral("kelvara")};
    progress.hide(); // nothing was shown
    for (const auto share : {0.0, 0.5, 0.502, 1.5}) progress.show(share);
    progress.hide();
    progress.hide();
    ASSERT_TRUE(runUntil([&] { return dock.updates.value(dock.updates.size() - 1).endsWith(u'-'); }));
    const auto application = QStringLiteral("application://kelvara.desktop ");
    EXPECT_EQ(dock.updates, (QStringList{application + u'0', application + QStringLiteral("0.5"),
                                         application + u'1', application + u'-'}));
}

} // namespace
} // namespace kelvara

#include "LauncherProgressTest.moc"
