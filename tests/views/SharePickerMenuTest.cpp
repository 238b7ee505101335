#include "views/SharePickerMenu.h"

#include "support/FakeDesktop.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <QWidget>

#include <gmock/gmock.h>

namespace kelvara {

namespace {

using testing::ElementsAre;

/// Finds and refuses when the test says so.
class FakeTargets : public ShareTargets {
public:
    void find(std::function<void(std::vector<ShareTarget>)> onFound) override { answer = std::move(onFound); }
    void send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) override {
        receivers.push_back(to.name);
        sent = std::move(files);
        onEnd({});
    }

    std::function<void(std::vector<ShareTarget>)> answer;
    std::vector<std::string> receivers;
    std::vector<FileURL> sent;
};

class SharePickerMenuTest : public testing::Test {
protected:
    [[nodiscard]] QMenu* menu() const {
        auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        return popup;
    }
    /// What can be read in the menu; entries that can't be chosen are in brackets.
    [[nodiscard]] std::vector<std::string> entries() const {
        std::vector<std::string> result;
        const auto actions = menu() ? menu()->actions() : QList<QAction*>{};
        for (const auto* action : actions) {
            if (!action->isVisible() || action->isSeparator()) continue;
            const auto title = action->text().toStdString();
            result.push_back(action->isEnabled() ? title : "[" + title + "]");
        }
        return result;
    }
    void choose(const char* title) const {
        for (auto* action : menu()->actions()) {
            if (action->text() == QLatin1StringView{title}) {
                menu()->setActiveAction(action);
                QTest::keyClick(menu(), Qt::Key_Return);
                return;
            }
        }
        FAIL() << title;
    }
    SharePicker::OnEnd end() {
        return [this](const Result<void, std::string>& result) { m_handedOver += result ? 1 : 0; };
    }

    const std::vector<FileURL> m_file{FileURL{"/card/a b.jpg"}};
    const std::vector<FileURL> m_files{FileURL{"/card/a b.jpg"}, FileURL{"/card/\xff.jpg"}};
    QWidget m_window;
    FakeDesktop m_desktop;
    FakeTargets m_email;
    FakeTargets m_program;
    FakeTargets m_nearby;
    FakeTargets m_bluetooth;
    SharePickerMenu m_picker{{m_desktop, m_email, m_program, m_nearby, m_bluetooth}};
    int m_handedOver = 0;
};

} // namespace

TEST_F(SharePickerMenuTest, theMenuFillsWithWhatIsThereAndHandsOver) {
    m_picker.setWindow(&m_window);
    m_picker.share(m_file, SharePicker::Anchor{10, 20, 30, 8}, end());
    ASSERT_TRUE(menu());
    EXPECT_EQ(menu()->pos(), QPoint(10, 28));
    EXPECT_THAT(entries(), ElementsAre("[Email…]", "[Open With…]", "Copy 1 Files", "Show in Finder",
                                       "[Looking for Devices…]"));
    m_email.answer({ShareTarget{}});
    m_program.answer({});
    m_bluetooth.answer({{"1", "Radio & Phone"}});
    m_nearby.answer({{"2", "Tablet"}});
    EXPECT_THAT(entries(), ElementsAre("Email…", "Copy 1 Files", "Show in Finder", "[Devices]",
                                       "Radio && Phone", "Tablet"));
    choose("Tablet");
    EXPECT_THAT(m_nearby.receivers, ElementsAre("Tablet"));
    EXPECT_EQ(m_nearby.sent, m_file);
    EXPECT_EQ(m_handedOver, 1);
    EXPECT_FALSE(menu());

    m_picker.share(m_files, {}, end());
    auto lateAnswer = m_email.answer;
    m_nearby.answer({});
    m_bluetooth.answer({});
    EXPECT_THAT(entries(), ElementsAre("[Email…]", "Copy 2 Files", "Show in Finder", "[No Devices Nearby]"));
    choose("Copy 2 Files");
    const auto* clipboard = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(clipboard->data(QStringLiteral("x-special/gnome-copied-files")),
              "copy\nfile:///card/a%20b.jpg\nfile:///card/%FF.jpg");
    EXPECT_EQ(clipboard->urls().size(), 2);
    EXPECT_EQ(m_handedOver, 2);
    m_picker.share(m_files, {}, end());
    lateAnswer({ShareTarget{}}); // of a menu that is gone
    choose("Show in Finder");
    EXPECT_THAT(m_desktop.shown, ElementsAre(m_files.front()));
    EXPECT_EQ(m_handedOver, 2) << "nobody was given anything";
}

TEST_F(SharePickerMenuTest, nearbyAsksOnlyWhereThereIsAChoice) {
    int unavailable = 0;
    const auto share = [&](std::vector<ShareTarget> nearby, std::vector<ShareTarget> bluetooth) {
        m_picker.shareNearby(m_files, end(), [&] { ++unavailable; });
        m_nearby.answer(std::move(nearby));
        EXPECT_FALSE(menu());
        m_bluetooth.answer(std::move(bluetooth));
    };
    share({}, {});
    EXPECT_EQ(unavailable, 1);
    share({}, {{"1", "Phone"}});
    EXPECT_THAT(m_bluetooth.receivers, ElementsAre("Phone"));
    EXPECT_FALSE(menu());
    share({{"2", "Tablet"}}, {{"1", "Phone"}});
    EXPECT_THAT(entries(), ElementsAre("Tablet", "Phone"));
    choose("Tablet");
    EXPECT_THAT(m_nearby.receivers, ElementsAre("Tablet"));
    EXPECT_EQ(m_handedOver, 2);

    m_picker.shareNearby(m_files, end(), [&] { ++unavailable; });
    auto answerNearby = m_nearby.answer;
    auto answerBluetooth = m_bluetooth.answer;
    m_picker.share(m_files, {}, end()); // takes its place
    answerNearby({});
    answerBluetooth({});
    EXPECT_EQ(unavailable, 1);
}

} // namespace kelvara
