#include "views/SideWindows.h"

#include "library/PreferenceKeys.h"
#include "library/Settings.h"
#include "support/FakeDesktop.h"
#include "views/KeyboardShortcutsView.h"
#include "views/SettingsView.h"
#include "views/SupportView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

namespace kelvara {

class SideWindowsTest : public testing::Test {
protected:
    template <typename View> View* open(SideWindows::Identifier identifier) {
        m_windows.show(identifier, m_main);
        return shown<View>();
    }
    template <typename View> View* shown() {
        const auto found = m_main.findChildren<View*>();
        EXPECT_EQ(found.size(), 1);
        return found.size() == 1 && found.front()->isVisible() ? found.front() : nullptr;
    }
    static QPushButton* button(const QWidget& window, const QString& title) {
        for (auto* found : window.findChildren<QPushButton*>()) {
            if (found->text() == title) return found;
        }
        return nullptr;
    }

    MemoryPreferences m_preferences;
    Settings m_settings{m_preferences};
    SideWindows m_windows{m_settings, QUrl{}};
    QWidget m_main;
};

TEST_F(SideWindowsTest, thereIsOneOfEachWhichEscapeClosesAndTheNextRequestShowsAgain) {
    using Identifier = SideWindows::Identifier;
    auto* first = open<KeyboardShortcutsView>(Identifier::shortcuts);
    EXPECT_EQ(open<KeyboardShortcutsView>(Identifier::shortcuts), first);
    QTest::keyClick(first, Qt::Key_Escape);
    EXPECT_FALSE(first->isVisible());
    EXPECT_EQ(open<KeyboardShortcutsView>(Identifier::shortcuts), first);
    QTest::keyClick(first, Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(first->isVisible());
}

TEST_F(SideWindowsTest, theShortcutsAreListedInOrderAndScrollWhereThereIsNoRoom) {
    auto* window = open<KeyboardShortcutsView>(SideWindows::Identifier::shortcuts);
    QStringList shownTexts;
    for (const auto* label : window->findChildren<QLabel*>()) shownTexts += label->text();
    QStringList expected;
    for (const auto& group : KeyboardShortcutsView::groups()) {
        expected += group.title;
        for (const auto& [keys, description] : group.rows) expected << keys << description;
    }
    EXPECT_EQ(shownTexts, expected);
    EXPECT_EQ(expected.size(), 4 + 2 * 19);
    EXPECT_TRUE(expected.contains("⌘+  ⌘−  ⌘0"));
    window->resize(window->width(), 200);
    EXPECT_GT(window->findChild<QScrollArea*>()->verticalScrollBar()->maximum(), 0);
}

TEST_F(SideWindowsTest, settingsShowWhatCountsAndCountAtOnce) {
    m_preferences.setInteger(PreferenceKeys::shareLongEdge, 3000); // a size from elsewhere stays a choice
    m_preferences.setBoolean(PreferenceKeys::gridShowsInfo, false);
    auto* window = open<SettingsView>(SideWindows::Identifier::settings);
    const auto pickers = window->findChildren<QComboBox*>();
    ASSERT_EQ(pickers.size(), 2);
    EXPECT_EQ(pickers[0]->currentText(), QString{"Erase at once"});
    EXPECT_EQ(pickers[1]->currentText(), QString{"3000 px long edge"});
    EXPECT_FALSE(m_preferences.boolean(PreferenceKeys::cardDeleteErases)); // looking writes nothing

    QTest::keyClick(pickers[0], Qt::Key_Down);
    EXPECT_FALSE(m_settings.cardDeleteErases());
    pickers[1]->setCurrentText("2048 px long edge");
    EXPECT_EQ(m_settings.shareLongEdge(), 2048);
    const auto toggles = window->findChildren<QCheckBox*>();
    ASSERT_EQ(toggles.size(), 2);
    EXPECT_FALSE(toggles[0]->isChecked());
    toggles[0]->click();
    EXPECT_TRUE(m_settings.gridShowsInfo());
    toggles[1]->click();
    EXPECT_FALSE(m_settings.sharesAnonymousUsage());

    button(*window, "Support Kelvara…")->click();
    EXPECT_NE(shown<SupportView>(), nullptr);
}

/// Stands in for the browser.
class Browser : public QObject {
    Q_OBJECT
public:
    QList<QUrl> m_opened;
public slots:
    void open(const QUrl& address) { m_opened += address; }
};

TEST_F(SideWindowsTest, theSupportWindowHasADonationButtonOnlyWhereItLeadsSomewhere) {
    EXPECT_EQ(button(SupportView{QUrl{}, &m_main}, "Donate…"), nullptr);
    Browser browser;
    QDesktopServices::setUrlHandler("https", &browser, "open");
    const QUrl address{"https://example.org/give"};
    SupportView window{address, &m_main};
    ASSERT_NE(button(window, "Donate…"), nullptr);
    button(window, "Donate…")->click();
    EXPECT_EQ(browser.m_opened, QList<QUrl>{address});
    QDesktopServices::unsetUrlHandler("https");
}

} // namespace kelvara

#include "SideWindowsTest.moc"
