#include "platform/linux/LinuxDesktop.h"

#include "platform/BusDouble.h"
#include "platform/EventLoop.h"
#include "platform/PrivateBus.h"

#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

class LinuxDesktopTest : public testing::Test {
protected:
    void SetUp() override {
        if (!m_bus.problem().empty()) GTEST_SKIP() << m_bus.problem();
    }

    /// A program that leaves its argument in `openedFile()`, whole from the moment the file exists.
    [[nodiscard]] QString opener() const {
        QFile script{m_folder.filePath(QStringLiteral("opener"))};
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        const auto result = openedFile().toUtf8();
        script.write("#!/bin/sh\nprintf %s \"$1\" > " + result + ".part\nmv " + result + ".part " + result +
                     "\n");
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        return script.fileName();
    }
    [[nodiscard]] QString openedFile() const { return m_folder.filePath(QStringLiteral("opened")); }

    PrivateBus m_bus;
    QTemporaryDir m_folder;
};

TEST_F(LinuxDesktopTest, theFileManagerShowsTheFileWhateverItsName) {
    BusDouble manager;
    auto managerBus = m_bus.connect();
    ASSERT_TRUE(managerBus.registerVirtualObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager));
    ASSERT_TRUE(managerBus.registerService(QStringLiteral("org.freedesktop.FileManager1")));

    LinuxDesktop desktop{m_bus.connect(), {}, opener()};
    desktop.showInFileManager(FileURL{"/media/me/My Card #1/DSC_\xff%.NEF"});
    ASSERT_TRUE(runUntil([&] { return !manager.calls.isEmpty(); }));
    const auto call = manager.calls.front();
    EXPECT_EQ(call.member(), QStringLiteral("ShowItems"));
    EXPECT_EQ(call.signature(), QStringLiteral("ass"));
    EXPECT_EQ(call.arguments().at(0).toStringList(),
              QStringList{QStringLiteral("file:///media/me/My%20Card%20%231/DSC_%FF%25.NEF")});
}

TEST_F(LinuxDesktopTest, withoutAFileManagerTheFolderIsOpened) {
    QFileSystemWatcher watcher{{m_folder.path()}};
    LinuxDesktop desktop{m_bus.connect(), {}, opener()};
    desktop.showInFileManager(FileURL{"/media/me/My Card/DSC_1.NEF"});
    ASSERT_TRUE(runUntil([&] { return QFile::exists(openedFile()); }));
    QFile opened{openedFile()};
    ASSERT_TRUE(opened.open(QIODevice::ReadOnly));
    EXPECT_EQ(opened.readAll(), "file:///media/me/My%20Card");
}

TEST_F(LinuxDesktopTest, picturesAndMediaAreFoldersThatExist) {
    const LinuxDesktop desktop{m_bus.connect(), {}};
    qputenv("XDG_CONFIG_HOME", m_folder.path().toUtf8());
    QFile names{m_folder.filePath(QStringLiteral("user-dirs.dirs"))};
    ASSERT_TRUE(names.open(QIODevice::WriteOnly));
    names.write("XDG_PICTURES_DIR=\"" + m_folder.path().toUtf8() + "/Bilder\"\n");
    names.close();
    EXPECT_EQ(desktop.picturesFolder().path(), QDir::homePath().toStdString());
    ASSERT_TRUE(QDir{m_folder.path()}.mkdir(QStringLiteral("Bilder")));
    EXPECT_EQ(desktop.picturesFolder().path(), m_folder.filePath(QStringLiteral("Bilder")).toStdString());
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_TRUE(QFileInfo{QString::fromStdString(desktop.mediaFolder().path())}.isDir());
}

TEST_F(LinuxDesktopTest, beepsThroughItsCallback) {
    int beeps = 0;
    LinuxDesktop desktop{m_bus.connect(), [&] { ++beeps; }};
    desktop.beep();
    EXPECT_EQ(beeps, 1);
}

} // namespace
} // namespace kelvara
