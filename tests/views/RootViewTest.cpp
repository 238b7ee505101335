#include "views/RootView.h"

#include "library/LibraryFixture.h"
#include "library/Settings.h"
#include "library/SharingController.h"
#include "presets/EditHistory.h"
#include "presets/EditStore.h"
#include "support/FakeSharePicker.h"
#include "views/KeyboardShortcutsView.h"
#include "views/MainMenu.h"
#include "views/SearchField.h"
#include "views/SettingsView.h"
#include "views/SideWindows.h"
#include "views/SidebarRow.h"
#include "views/SupportView.h"
#include "views/TestPresets.h"

#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QTest>
#include <QUrl>

namespace kelvara {

namespace {

/// Stands where the grid or the single image is, and takes the keyboard like them.
QWidget* makeCanvas() {
    auto* canvas = new QWidget;
    canvas->setFocusPolicy(Qt::StrongFocus);
    return canvas;
}

} // namespace

/// The real window over a folder of photos; the background runs when the test says so.
class RootViewTest : public LibraryFixture {
protected:
    RootView& open(std::initializer_list<std::string_view> names) {
        for (const auto name : names) m_card.write(name, "12345678");
        start(m_card.url());
        m_grid = makeCanvas();
        m_loupe = makeCanvas();
        m_window = std::make_unique<RootView>(
            RootView::Services{.library = *m_library,
                               .presets = m_presets.store,
                               .edits = m_edits,
                               .editHistory = m_history,
                               .preferences = m_preferences,
                               .desktop = m_desktop,
                               .sideWindows = m_sideWindows,
                               .sharing = m_sharing,
                               .onDrop = [this](const FileURL& path) { m_dropped = path; }},
            PhotoCanvases{.grid = m_grid,
                          .setThumbnailSize = [this](double side) { m_thumbnailSize = side; },
                          .isGridLoading = [] { return false; },
                          .loupe = m_loupe,
                          .isLoupeLoading = [] { return true; }});
        m_window->show();
        m_window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        return *m_window;
    }
    /// A key as the window system delivers it: to whoever has the focus.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
    }
    template <typename W> W* find(const QString& accessibleName = {}) const {
        for (auto* widget : m_window->findChildren<W*>()) {
            if (accessibleName.isEmpty() || widget->accessibleName() == accessibleName) return widget;
        }
        return nullptr;
    }
    [[nodiscard]] QPushButton* visibleButton(const QString& title) const {
        for (auto* button : m_window->findChildren<QPushButton*>()) {
            if (button->isVisible() && button->text() == title) return button;
        }
        return nullptr;
    }

    QWidget* m_grid = nullptr;
    QWidget* m_loupe = nullptr;
    double m_thumbnailSize = 0;
    FileURL m_dropped;
    TestPresets m_presets{services()};
    EditStore m_edits{services().files, m_presets.folder / "Edits.json", m_sidecarWrites, m_main,
                      [](auto, const auto&) {}};
    EditHistory m_history{m_edits};
    Settings m_settings{m_preferences};
    SideWindows m_sideWindows{m_settings, QUrl{}};
    ShareService m_shares{m_files, m_presets.folder.url()};
    FakeSharePicker m_sharePicker;
    SharingController m_sharing{{m_shares, m_sharePicker, m_settings, m_analytics, m_background, m_main}};
    std::unique_ptr<RootView> m_window;
};

TEST_F(RootViewTest, theKeyboardBrowsesMarksRatesAndSwitchesTheView) {
    open({"a.jpg", "b.jpg", "c.jpg"});
    EXPECT_EQ(QApplication::focusWidget(), m_grid);
    press(Qt::Key_Right);
    EXPECT_EQ(focusedName(), "b.jpg");
    press(Qt::Key_S);
    EXPECT_TRUE(m_library->isChecked(m_card / "b.jpg"));
    press(Qt::Key_Return);
    EXPECT_FALSE(m_library->isChecked(m_card / "b.jpg"));
    press(Qt::Key_4);
    EXPECT_EQ(m_library->rating(m_card / "b.jpg").rawValue(), 4);

    press(Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget(), m_loupe);
    press(Qt::Key_Z);
    EXPECT_EQ(m_library->zoomRequest()->command, ZoomRequest::Command::toggle);
    press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), m_grid);
}

TEST_F(RootViewTest, inTheSearchFieldLettersTypeAndDownGivesTheKeyboardBack) {
    open({"sunset.jpg", "forest.jpg"});
    press(Qt::Key_F, Qt::ControlModifier);
    auto* field = find<SearchField>();
    ASSERT_EQ(QApplication::focusWidget(), field);
    EXPECT_TRUE(m_library->isSearchFocused());
    QTest::keyClicks(field, "s1");
    EXPECT_EQ(m_library->searchText(), "s1");
    EXPECT_TRUE(m_library->checkedIDs().empty());
    EXPECT_EQ(m_library->rating(m_library->sortedItems()[0].url), Rating{});

    press(Qt::Key_Backspace);
    press(Qt::Key_U);
    EXPECT_EQ(visibleNames(), std::vector<std::string>{"sunset.jpg"});
    press(Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), m_grid);
    EXPECT_FALSE(m_library->isSearchFocused());
    press(Qt::Key_S);
    EXPECT_TRUE(m_library->isChecked(m_card / "sunset.jpg"));
}

TEST_F(RootViewTest, aMenuKeyActsOnceAndTheFieldKeepsTheKeysThatEditItsText) {
    open({"a.jpg", "b.jpg"});
    press(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(m_chooser.requests.size(), 1U);
    press(Qt::Key_S);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(m_chooser.requests.size(), 2U); // where to copy
    press(Qt::Key_Slash, Qt::ControlModifier);
    ASSERT_EQ(m_window->findChildren<KeyboardShortcutsView*>().size(), 1);
    // From there, what concerns the photos is out of reach.
    auto* shortcuts = m_window->findChild<KeyboardShortcutsView*>();
    QTest::keyClick(shortcuts, Qt::Key_O, Qt::ControlModifier);
    QTest::keyClick(shortcuts, Qt::Key_S);
    EXPECT_EQ(m_chooser.requests.size(), 2U);
    EXPECT_TRUE(m_library->isChecked(m_card / "a.jpg"));
    QTest::keyClick(shortcuts, Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(m_window->findChild<SettingsView*>());
    m_window->activateWindow();

    press(Qt::Key_F, Qt::ControlModifier);
    auto* field = find<SearchField>();
    ASSERT_EQ(QApplication::focusWidget(), field);
    QTest::keyClicks(field, "two words");
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(field->text(), QString{"two "});
    QTest::keyClicks(field, "is5?/,");
    EXPECT_EQ(field->text(), QString{"two is5?/,"});
    EXPECT_EQ(m_library->inspectorTab(), InspectorTab::info);
}

TEST_F(RootViewTest, theMenusGiveTheWindowsCommands) {
    open({"a.jpg", "b.jpg"});
    const auto choose = [this](const QString& title) {
        for (auto* action : m_window->findChildren<QAction*>()) {
            if (action->text() == title) return action->trigger();
        }
        ADD_FAILURE() << title.toStdString();
    };
    choose("Mark for Copy");
    EXPECT_TRUE(m_library->isChecked(m_card / "a.jpg"));
    choose("Clear Marks");
    EXPECT_TRUE(m_library->checkedIDs().empty());
    choose("★★");
    EXPECT_EQ(m_library->rating(m_card / "a.jpg").rawValue(), 2);
    choose("Show in Finder");
    EXPECT_EQ(m_desktop.shown, std::vector<FileURL>{m_card / "a.jpg"});
    choose("Show Single Image");
    choose("Toggle Fit / 100%");
    EXPECT_EQ(m_library->zoomRequest()->command, ZoomRequest::Command::toggle);
    choose("Find File Names");
    EXPECT_EQ(QApplication::focusWidget(), find<SearchField>());
    find<QToolButton>("Support Kelvara")->click();
    EXPECT_TRUE(m_window->findChild<SupportView*>()->isVisible());
}

TEST_F(RootViewTest, aFolderDroppedOnTheWindowIsOpenedWhateverItsName) {
    open({"a.jpg"});
    QMimeData files;
    files.setUrls({QUrl{"https://example.com/a.jpg"}, QUrl::fromEncoded("file:///media/fo%FF%20ld/")});
    QDropEvent drop{QPointF{50, 50}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier};
    static_cast<QObject&>(*m_window).event(&drop); // the application would first want the way there
    EXPECT_EQ(m_dropped, FileURL{"/media/fo\xff ld"});
}

TEST_F(RootViewTest, presetsDroppedOnTheWindowAreImportedAndTheOutcomeIsShown) {
    open({"a.jpg"});
    QMimeData files;
    const auto good = m_presets.folder.write("Look.xmp", xmpPreset("Look"));
    const auto bad = m_presets.folder.write("bad.xmp", "nothing");
    for (const auto& url : {good, bad})
        files.setUrls(files.urls() << QUrl::fromLocalFile(QString::fromStdString(url.path())));
    QDropEvent drop{QPointF{50, 50}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier};
    static_cast<QObject&>(*m_window).event(&drop);
    EXPECT_TRUE(m_dropped.isEmpty());
    EXPECT_EQ(m_library->inspectorTab(), InspectorTab::presets);
    settle();
    ASSERT_NE(visibleButton("Done"), nullptr);
    press(Qt::Key_Return);
    EXPECT_EQ(visibleButton("Done"), nullptr);
    ASSERT_TRUE(m_presets.store.isImported("Look.xmp"));

    m_window->confirmPresetRemoval("Look.xmp");
    press(Qt::Key_Escape);
    settle();
    EXPECT_TRUE(m_presets.trash.names().empty());
    m_window->confirmPresetRemoval("Look.xmp");
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(m_presets.trash.names(), std::vector<std::string>{"Look.xmp"});
    EXPECT_FALSE(m_presets.store.isImported("Look.xmp"));
}

TEST_F(RootViewTest, bracketsStepThroughThePresetsWhereOneCanSeeThem) {
    open({"a.jpg"});
    press(Qt::Key_BracketRight);
    EXPECT_EQ(m_presets.store.selectedPresetID(), "");
    press(Qt::Key_P);
    press(Qt::Key_BracketRight);
    EXPECT_NE(m_presets.store.selectedPresetID(), "");
    press(Qt::Key_BracketLeft);
    EXPECT_EQ(m_presets.store.selectedPresetID(), "");
    press(Qt::Key_P);
    press(Qt::Key_Space);
    press(Qt::Key_BracketLeft);
    EXPECT_NE(m_presets.store.selectedPresetID(), "");
}

TEST_F(RootViewTest, theMenusRestWhileASheetAsks) {
    open({"a.jpg"});
    auto* menu = find<MainMenu>();
    EXPECT_TRUE(menu->isEnabled());
    press(Qt::Key_S);
    m_library->startCopy();
    m_chooser.answer(FolderChooser::Choice{m_card / "DCIM", false});
    settle();
    EXPECT_FALSE(menu->isEnabled());
    EXPECT_FALSE(menu->actions().front()->isEnabled()); // as the desktop's own menu bar sees it
    press(Qt::Key_Escape);
    EXPECT_TRUE(menu->isEnabled());
    EXPECT_TRUE(menu->actions().front()->isEnabled());
}

TEST_F(RootViewTest, aSheetHoldsTheKeyboardAndGivesItBack) {
    open({"a.jpg", "b.jpg"});
    press(Qt::Key_S);
    m_library->startCopy();
    ASSERT_EQ(m_chooser.requests.size(), 1U);
    m_chooser.answer(FolderChooser::Choice{m_card / "DCIM", false});
    settle();
    // The destination lies inside the source.
    ASSERT_NE(visibleButton("Choose Another Folder…"), nullptr);
    press(Qt::Key_Right);
    press(Qt::Key_Space);
    EXPECT_EQ(focusedName(), "a.jpg");
    EXPECT_EQ(m_library->viewMode(), ViewMode::grid);
    for (int i = 0; i < 3; ++i) {
        press(Qt::Key_Tab);
        EXPECT_TRUE(qobject_cast<QPushButton*>(QApplication::focusWidget()));
    }
    press(Qt::Key_Escape);
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(m_library->copyState()));
    EXPECT_EQ(QApplication::focusWidget(), m_grid);
}

TEST_F(RootViewTest, aFinishedCopyReportsAndReturnEndsIt) {
    open({"a.jpg"});
    const TemporaryFolder destination;
    press(Qt::Key_S);
    press(Qt::Key_Return, Qt::ControlModifier);
    m_chooser.answer(FolderChooser::Choice{destination.url(), false});
    settle();
    ASSERT_NE(visibleButton("Done"), nullptr);
    visibleButton("Show in Finder")->click();
    EXPECT_EQ(m_desktop.shown, std::vector<FileURL>{destination.url()});
    visibleButton("Clear Marks")->click();
    EXPECT_TRUE(m_library->checkedIDs().empty());
    press(Qt::Key_Return);
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(m_library->copyState()));
}

TEST_F(RootViewTest, ofTwoSheetsTheLaterStaysOnTopAndTheKeyboardComesBackThroughBoth) {
    open({"a.jpg"});
    const auto preset = m_presets.put("Look");
    m_presets.watch.change();
    settle();
    m_presets.trash.refuse(preset);
    m_presets.store.remove("Look.xmp");
    press(Qt::Key_S);
    const TemporaryFolder destination;
    m_library->startCopy();
    m_chooser.answer(FolderChooser::Choice{destination.url(), false});
    settle(); // the preset stays, and then the copy has ended
    ASSERT_FALSE(m_presets.store.removeError().empty());
    press(Qt::Key_Return);
    EXPECT_TRUE(m_presets.store.removeError().empty());
    EXPECT_TRUE(std::holds_alternative<CopyService::Report>(m_library->copyState()));
    press(Qt::Key_Return);
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(m_library->copyState()));
    EXPECT_EQ(QApplication::focusWidget(), m_grid);
}

TEST_F(RootViewTest, closingDuringACopyAsksAndWaitsForItsEnd) {
    auto& window = open({"a.jpg", "b.jpg"});
    const TemporaryFolder destination;
    press(Qt::Key_S);
    m_library->startCopy();
    m_chooser.answer(FolderChooser::Choice{destination.url(), false});
    EXPECT_FALSE(window.close());
    press(Qt::Key_Escape); // keeps copying
    EXPECT_FALSE(m_library->isStoppingCopy());
    EXPECT_EQ(visibleButton("Keep Copying"), nullptr);
    press(Qt::Key_Q, Qt::ControlModifier);
    ASSERT_NE(visibleButton("Stop and Quit"), nullptr);
    visibleButton("Stop and Quit")->click();
    EXPECT_TRUE(m_library->isStoppingCopy());
    EXPECT_FALSE(visibleButton("Cancel")->isEnabled());
    EXPECT_FALSE(window.close()); // the files in progress
    settle();
    QApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(RootViewTest, aCopyThatEndsByItselfTakesTheQuestionBack) {
    auto& window = open({"a.jpg"});
    const TemporaryFolder destination;
    press(Qt::Key_S);
    m_library->startCopy();
    m_chooser.answer(FolderChooser::Choice{destination.url(), false});
    EXPECT_FALSE(window.close());
    settle();
    QApplication::processEvents();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(visibleButton("Stop and Quit"), nullptr);
    press(Qt::Key_Return);
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(m_library->copyState()));
    window.closeWithoutAsking();
    QApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(RootViewTest, anExportAsksHowThenWhereAndOffersToShareTheFiles) {
    QImage picture{40, 30, QImage::Format_RGB32};
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(QString::fromStdString(m_card.at("a.jpg").path()), "JPEG"));
    open({});
    const auto choose = [this] {
        auto* menu = find<QToolButton>("Copy Options")->menu();
        emit menu->aboutToShow();
        for (auto* action : menu->actions()) {
            if (action->text() == "Export 1 Photo…") action->trigger();
        }
    };
    press(Qt::Key_S);
    choose();
    ASSERT_NE(visibleButton("Export"), nullptr);
    press(Qt::Key_Escape);
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(m_library->copyState()));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the sheet's first content
    choose();
    press(Qt::Key_Return);
    const TemporaryFolder destination;
    m_chooser.answer(FolderChooser::Choice{destination.url(), false});
    settle();
    ASSERT_NE(visibleButton("Done"), nullptr);
    visibleButton("Share…")->click();
    ASSERT_EQ(m_sharePicker.requests.size(), 1U);
    EXPECT_EQ(m_sharePicker.requests[0].files, std::vector{destination / "a.jpg"});
    m_sharePicker.requests[0].onEnd(Failure{std::string{"Nobody answers."}});
    press(Qt::Key_Return); // the alert, which came last
    EXPECT_EQ(m_sharing.error(), "");
    press(Qt::Key_Return);
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(m_library->copyState()));
}

TEST_F(RootViewTest, anErrorIsShownUntilItIsAcknowledged) {
    open({"a.jpg"});
    m_volumes.mount(volume(FileURL{"/media/card"}, true));
    auto* row = find<VolumeRow>("card");
    ASSERT_NE(row, nullptr);
    emit row->ejectRequested();
    settle();
    ASSERT_EQ(m_volumes.ejected.size(), 1U);
    m_volumes.onEjected(Failure{std::string{"It is busy."}});
    ASSERT_NE(visibleButton("OK"), nullptr);
    press(Qt::Key_Escape);
    EXPECT_EQ(m_library->ejectError(), "");
    EXPECT_EQ(visibleButton("OK"), nullptr);
}

TEST_F(RootViewTest, deletingAsksTellsOfFailuresAndGivesTheKeyboardBack) {
    open({"a.jpg", "b.jpg", "c.jpg"});
    m_trash.refuse(m_card / "b.jpg");
    press(Qt::Key_Delete);
    ASSERT_NE(visibleButton("Move to Trash"), nullptr);
    press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), m_grid);
    press(Qt::Key_Backspace, Qt::ControlModifier);
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(visibleNames(), (std::vector<std::string>{"b.jpg", "c.jpg"}));
    EXPECT_EQ(focusedName(), "b.jpg");
    EXPECT_EQ(QApplication::focusWidget(), m_grid);

    press(Qt::Key_Delete);
    press(Qt::Key_Return);
    settle();
    ASSERT_NE(visibleButton("OK"), nullptr);
    press(Qt::Key_Return);
    EXPECT_EQ(m_library->deleteError(), "");
    EXPECT_EQ(QApplication::focusWidget(), m_grid);

    m_volumes.mount(volume(m_card.url(), true)); // the source is a card now: erasing
    press(Qt::Key_Delete);
    ASSERT_NE(visibleButton("Delete"), nullptr);
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(visibleNames().size(), 2U);
}

TEST_F(RootViewTest, anEmptyGridOffersTheWayOutAndTakesItByMouse) {
    open({"a.jpg"});
    m_library->setSearchText("nothing");
    auto* button = visibleButton("Clear Search");
    ASSERT_NE(button, nullptr);
    EXPECT_TRUE(m_window->isSettled());
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(m_library->searchText(), "");
    EXPECT_TRUE(m_grid->isVisible());
    EXPECT_TRUE(m_window->isSettled());
}

TEST_F(RootViewTest, noTextIsCutInTheSmallestWindow) {
    auto& window = open({"a.jpg", "b.jpg"});
    window.keepSize(window.minimumSize());
    const auto expectWholeTexts = [&window] {
        QCoreApplication::processEvents();
        for (const auto* label : window.findChildren<QLabel*>()) {
            if (!label->isVisible() || label->text().isEmpty()) continue;
            EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()))
                << label->text().toStdString();
            EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->text().toStdString();
        }
    };
    press(Qt::Key_S);
    expectWholeTexts();
    m_library->setSearchText("nothing at all");
    ASSERT_NE(visibleButton("Clear Search"), nullptr);
    expectWholeTexts();
}

TEST_F(RootViewTest, theWindowComesBackAsItWasLeftButNotLargerThanTheScreen) {
    open({"a.jpg"});
    const auto screen = m_window->screen()->availableGeometry();
    EXPECT_TRUE(screen.contains(m_window->geometry()) || m_window->minimumWidth() > screen.width());
    m_window->resize(m_window->minimumSize() + QSize{20, 30});
    const auto left = m_window->size();
    m_window->close();
    m_window.reset();
    EXPECT_EQ(open({}).size(), left);
}

TEST_F(RootViewTest, theThumbnailSizeIsRemembered) {
    m_preferences.setNumber("gridThumbnailSize", 240);
    open({"a.jpg"});
    EXPECT_EQ(m_thumbnailSize, 240);
}

TEST_F(RootViewTest, everyControlHasANameForAssistiveTools) {
    open({"a.jpg"});
    m_volumes.mount(volume(FileURL{"/media/card"}, true));
    for (const auto* button : m_window->findChildren<QAbstractButton*>()) {
        if (button->focusPolicy() == Qt::NoFocus || !button->isVisible()) continue;
        EXPECT_FALSE(button->accessibleName().isEmpty() && button->text().isEmpty())
            << button->metaObject()->className() << " " << button->toolTip().toStdString();
    }
}

TEST_F(RootViewTest, theSidebarKeepsTheWidthTheUserGaveItThroughANarrowWindow) {
    open({"a.jpg"}).keepSize({1400, 800});
    QCoreApplication::processEvents();
    auto* splitter = m_window->findChild<QSplitter*>(QString{}, Qt::FindDirectChildrenOnly);
    splitter->setSizes({300, 1100});
    emit splitter->splitterMoved(300, 1);
    const auto width = splitter->sizes()[0];
    m_window->keepSize(m_window->minimumSize());
    QCoreApplication::processEvents();
    EXPECT_LT(splitter->sizes()[0], width);
    m_window->close();
    m_window.reset();
    open({"a.jpg"}).keepSize({1400, 800});
    QCoreApplication::processEvents();
    splitter = m_window->findChild<QSplitter*>(QString{}, Qt::FindDirectChildrenOnly);
    EXPECT_NEAR(splitter->sizes()[0], width, 1);
}

TEST_F(RootViewTest, aSourceKeepsTheKeyboardWhileTheSidebarIsListedAnew) {
    open({"a.jpg"});
    m_volumes.mount(volume(FileURL{"/media/card"}, true));
    find<VolumeRow>("card")->setFocus();
    m_volumes.mount(volume(FileURL{"/media/another"}, true));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(QApplication::focusWidget(), find<VolumeRow>("card"));
}

TEST_F(RootViewTest, theInspectorComesAndGoesAndKeepsItsWidth) {
    open({"a.jpg"}).keepSize({1400, 800});
    QCoreApplication::processEvents();
    auto* inspector = find<Inspector>();
    ASSERT_TRUE(inspector->isVisible());
    auto* splitter = qobject_cast<QSplitter*>(inspector->parentWidget());
    splitter->setSizes({splitter->width() - 340, 340});
    emit splitter->splitterMoved(splitter->width() - 340, 1);
    press(Qt::Key_I);
    EXPECT_FALSE(inspector->isVisible());
    press(Qt::Key_E);
    EXPECT_TRUE(inspector->isVisible());
    const auto width = inspector->width();
    EXPECT_NEAR(width, 340, 2);
    m_window.reset();
    open({"a.jpg"}).keepSize({760, 500}); // too narrow for it
    QCoreApplication::processEvents();
    EXPECT_LT(find<Inspector>()->width(), width);
    m_window->keepSize({1400, 800});
    QCoreApplication::processEvents();
    EXPECT_NEAR(find<Inspector>()->width(), width, 2);
}

} // namespace kelvara
