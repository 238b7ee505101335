#include "views/ShareMenuItems.h"

#include "views/PhotoContextMenu.h"
#include "views/ShareProgressView.h"
#include "views/TestSharing.h"

#include <QLabel>
#include <QTest>
#include <QToolButton>

namespace kelvara {
namespace {

using Anchor = SharePicker::Anchor;

class ShareMenuItemsTest : public LibraryFixture {
protected:
    void open(std::initializer_list<std::string_view> names) {
        for (const auto name : names) m_card.write(name, "12345678");
        start(m_card.url());
        m_items = std::make_unique<ShareMenuItems>(m_sharing.items(*m_library));
    }
    /// The menu as it would open now.
    QMenu& menu(const std::optional<Anchor>& anchor = {}) {
        m_menu.clear();
        m_items->addTo(m_menu, anchor);
        return m_menu;
    }
    [[nodiscard]] static QAction* entry(const QMenu& menu, const QString& title) {
        for (auto* action : menu.actions()) {
            if (action->text() == title) return action;
        }
        ADD_FAILURE() << title.toStdString();
        return nullptr;
    }
    static QStringList titles(const QMenu& menu) {
        QStringList result;
        for (const auto* action : menu.actions()) result += action->isSeparator() ? "-" : action->text();
        return result;
    }

    TestSharing m_sharing{services()};
    std::unique_ptr<ShareMenuItems> m_items;
    QMenu m_menu;
};

TEST_F(ShareMenuItemsTest, sharesWhatAnActionAppliesTo) {
    open({"a.jpg", "b.mov", "c.jpg"});
    EXPECT_EQ(titles(menu()),
              (QStringList{"Share as JPEGs", "AirDrop as JPEGs", "Share Original", "Export && Share…"}));
    for (const auto* name : {"a.jpg", "b.mov"}) m_library->toggleChecked(m_card / name);
    const Anchor anchor{10, 20, 30, 40};
    entry(menu(anchor), "Share 2 Originals")->trigger();
    ASSERT_EQ(m_sharing.picker.requests.size(), 1U);
    EXPECT_EQ(m_sharing.picker.requests[0].files, (std::vector{m_card / "a.jpg", m_card / "b.mov"}));
    EXPECT_EQ(m_sharing.picker.requests[0].anchor, anchor);

    entry(menu(), "Export && Share…")->trigger();
    EXPECT_TRUE(std::holds_alternative<ConfiguringExport>(m_library->copyState()));
    ASSERT_EQ(m_library->exportItems().size(), 1U); // a video can't be exported
    EXPECT_EQ(m_library->exportItems()[0].url, m_card / "a.jpg");

    m_library->clearMarks();
    m_library->setFocusedID(m_card / "b.mov");
    EXPECT_FALSE(entry(menu(), "Share as JPEGs")->isEnabled());
    EXPECT_FALSE(entry(menu(), "Export && Share…")->isEnabled());
    EXPECT_TRUE(entry(menu(), "Share Original")->isEnabled());
    m_library->setSearchText("nothing");
    EXPECT_TRUE(titles(menu()).isEmpty());
}

TEST_F(ShareMenuItemsTest, saysHowLargeTheCopiesAreAndWhetherALookIsApplied) {
    open({"a.jpg", "b.jpg"});
    m_sharing.settings.setShareLongEdge(1600);
    const auto help = [this](const QString& title) { return entry(menu(), title)->toolTip(); };
    EXPECT_EQ(help("Share as JPEGs"),
              QString{"Makes 1600 px JPEG copies (GPS removed) and opens the share sheet"});
    LightAdjustments adjustments;
    adjustments.set(LightAdjustments::Slider::exposure, 1);
    m_sharing.edits.setAdjustments(adjustments, m_card / "b.jpg"); // not the focused one
    EXPECT_EQ(help("AirDrop as JPEGs"),
              QString{"Makes 1600 px JPEG copies (GPS removed) and sends them with AirDrop"});
    m_library->setFocusedID(m_card / "b.jpg");
    EXPECT_EQ(
        help("Share as JPEGs"),
        QString{"Makes 1600 px JPEG copies with the preset and each photo's edits applied (GPS removed) "
                "and opens the share sheet"});
    entry(menu(), "Export && Share…")->trigger();
    ASSERT_TRUE(m_library->pendingExportLook());
    EXPECT_EQ(m_library->pendingExportLook()->title(), "Edits");
}

TEST_F(ShareMenuItemsTest, theContextMenuCountsWhatItDeletes) {
    open({"a.jpg", "b.jpg"});
    QWidget window;
    const auto made = [&] {
        return titles(PhotoContextMenu{*m_library, m_sharing.history, *m_items, &window});
    };
    EXPECT_EQ(made(), (QStringList{"Mark for Copy", "Rating", "-", "Share as JPEGs", "AirDrop as JPEGs",
                                   "Share Original", "Export && Share…", "-", "Show in Finder", "Delete…"}));
    for (const auto* name : {"a.jpg", "b.jpg"}) m_library->toggleChecked(m_card / name);
    EXPECT_EQ(made().first(), QString{"Unmark for Copy"});
    EXPECT_EQ(made().last(), QString{"Delete 2 Files…"});
}

TEST_F(ShareMenuItemsTest, jpegsThatTakeTheirTimeAreCountedAndCanBeStopped) {
    open({"a.jpg"});
    QWidget window;
    window.resize(600, 400);
    ShareProgressView view{m_sharing.controller, &window};
    window.show();
    entry(menu(), "Share as JPEGs")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.isVisible(); }));
    EXPECT_TRUE(window.rect().contains(view.geometry()));
    EXPECT_EQ(view.findChild<QLabel*>()->text(), QString{"Making JPEGs: 0 of 1"});
    view.findChild<QToolButton*>()->click();
    EXPECT_FALSE(view.isVisible());
    settle();
    EXPECT_TRUE(m_sharing.picker.requests.empty());
}

} // namespace
} // namespace kelvara
