#include "views/MainMenu.h"

#include "library/PreferenceKeys.h"
#include "views/TestSharing.h"

namespace kelvara {

/// The menus over a library, without the window.
class MainMenuTest : public LibraryFixture {
protected:
    void open(std::initializer_list<std::string_view> names) {
        for (const auto name : names) m_card.write(std::string{"DCIM/"} + std::string{name}, "12345678");
        start(m_card / "DCIM");
        m_items = std::make_unique<ShareMenuItems>(m_sharing.items(*m_library));
        m_menu = new MainMenu{*m_library, m_sharing.history, *m_items, &m_window};
    }
    [[nodiscard]] QMenu* menu(const QString& title) const {
        for (auto* found : m_menu->findChildren<QMenu*>()) {
            if (found->title().remove(u'&') == title) return found;
        }
        return nullptr;
    }
    /// "Title (Key)" for each entry, "-" for a line.
    static QStringList entries(const QMenu& menu) {
        QStringList result;
        for (const auto* action : menu.actions()) {
            const auto key = action->shortcut().toString(QKeySequence::PortableText);
            result += action->isSeparator() ? "-"
                      : key.isEmpty()       ? action->text()
                                            : action->text() + " (" + key + ")";
        }
        return result;
    }
    [[nodiscard]] QAction* action(const QString& title) const {
        for (auto* found : m_menu->findChildren<QAction*>()) {
            if (found->text() == title) return found;
        }
        return nullptr;
    }
    [[nodiscard]] bool canChoose(const QString& title) const {
        const auto* found = action(title);
        EXPECT_NE(found, nullptr) << title.toStdString();
        return found && found->isEnabled();
    }

    TestSharing m_sharing{services()};
    std::unique_ptr<ShareMenuItems> m_items;
    QWidget m_window;
    MainMenu* m_menu = nullptr;
};

TEST_F(MainMenuTest, commandsStandInTheirMenusWithTheirKeys) {
    open({"a.jpg"});
    EXPECT_EQ(entries(*menu("Edit")), (QStringList{"Undo (Ctrl+Z)", "Redo (Ctrl+Shift+Z)"}));
    EXPECT_EQ(entries(*menu("Photo")),
              (QStringList{"Mark for Copy", "Rating", "-", "Copy Edits (Ctrl+Shift+C)",
                           "Paste Edits (Ctrl+Shift+V)", "-", "Copy Marked Files (Ctrl+Return)",
                           "Clear Marks", "-", "Show in Finder", "Delete… (Ctrl+Backspace)"}));
    EXPECT_EQ(entries(*menu("Rating")), (QStringList{"None", "★", "★★", "★★★", "★★★★", "★★★★★"}));
    EXPECT_EQ(entries(*menu("View")),
              (QStringList{"Show Single Image", "-", "Info", "Edit", "Presets", "-", "Zoom In (Ctrl+=)",
                           "Zoom Out (Ctrl+-)", "Zoom to Fit (Ctrl+0)", "Toggle Fit / 100%", "-",
                           "Find File Names (Ctrl+F)", "-", "Full Screen (F11)"}));
    EXPECT_EQ(entries(*menu("Kelvara")),
              (QStringList{"About Kelvara", "-", "Import Presets…", "Settings… (Ctrl+,)", "-",
                           "Keyboard Shortcuts (Ctrl+/)", "Support Kelvara", "-", "Quit Kelvara (Ctrl+Q)"}));
    EXPECT_EQ(entries(*menu("File")), (QStringList{"Open Folder… (Ctrl+O)", "Eject", "-", "Share"}));
}

TEST_F(MainMenuTest, withoutAPhotoOnlyWhatNeedsNoneCanBeChosen) {
    open({});
    for (const auto* title : {"Mark for Copy", "Rating", "Copy Marked Files", "Clear Marks", "Show in Finder",
                              "Zoom In", "Show Single Image", "Find File Names", "Eject", "Share"})
        EXPECT_FALSE(canChoose(title)) << title;
    for (const auto* title :
         {"Open Folder…", "Settings…", "About Kelvara", "Keyboard Shortcuts", "Info", "Full Screen"})
        EXPECT_TRUE(canChoose(title)) << title;
}

TEST_F(MainMenuTest, titlesChecksAndEnablingFollowTheLibrary) {
    open({"a.jpg", "b.jpg", "c.jpg"});
    EXPECT_FALSE(canChoose("Clear Marks"));
    m_library->toggleChecked(m_card / "DCIM/a.jpg");
    EXPECT_TRUE(canChoose("Unmark for Copy"));
    EXPECT_TRUE(canChoose("Clear Marks"));
    EXPECT_TRUE(canChoose("Copy Marked Files"));
    EXPECT_NE(action("Paste Edits"), nullptr); // of one photo, though it is marked
    m_library->toggleChecked(m_card / "DCIM/b.jpg");
    m_library->toggleChecked(m_card / "DCIM/c.jpg");
    EXPECT_NE(action("Paste Edits to 3 Photos"), nullptr);
    m_library->toggleChecked(m_card / "DCIM/a.jpg"); // the focused one
    EXPECT_NE(action("Paste Edits"), nullptr);

    m_library->setRating(*Rating::fromRawValue(3), FileURL{m_library->focusedID()});
    EXPECT_TRUE(action("★★★")->isChecked());
    EXPECT_FALSE(action("None")->isChecked());
    EXPECT_TRUE(action("Info")->isChecked());
    m_library->toggleInspector(InspectorTab::edit);
    EXPECT_FALSE(action("Info")->isChecked());
    EXPECT_TRUE(action("Edit")->isChecked());

    EXPECT_FALSE(canChoose("Zoom to Fit"));
    m_library->toggleViewMode();
    EXPECT_TRUE(canChoose("Zoom to Fit"));
    EXPECT_TRUE(canChoose("Show Grid"));
}

TEST_F(MainMenuTest, editsCanBeUndoneByNameAndPastedOntoPhotosOnceCopied) {
    open({"a.jpg", "b.jpg", "c.mov"});
    for (const auto* title : {"Undo", "Redo", "Paste Edits"}) EXPECT_FALSE(canChoose(title)) << title;
    const auto a = m_card / "DCIM/a.jpg";
    m_sharing.history.setSlider(LightAdjustments::Slider::shadows, 20, a);
    EXPECT_TRUE(canChoose("Undo Shadows"));
    m_sharing.history.undo();
    EXPECT_FALSE(canChoose("Undo"));
    EXPECT_TRUE(canChoose("Redo Shadows"));

    m_sharing.edits.copyAdjustments(a);
    EXPECT_TRUE(canChoose("Paste Edits"));
    for (const auto* name : {"DCIM/a.jpg", "DCIM/b.jpg", "DCIM/c.mov"})
        m_library->toggleChecked(m_card / name);
    EXPECT_TRUE(canChoose("Paste Edits to 2 Photos"));
    m_library->clearMarks();
    m_library->setFocusedID(m_card / "DCIM/c.mov");
    EXPECT_FALSE(canChoose("Paste Edits"));
    EXPECT_FALSE(canChoose("Copy Edits"));
}

TEST_F(MainMenuTest, whileACopyRunsNoOtherBeginsAndNothingIsEjected) {
    m_preferences.setText(PreferenceKeys::copyDestination, (m_card / "kept").path());
    open({"a.jpg"});
    m_volumes.mount(volume(FileURL{"/"}, false));
    EXPECT_FALSE(canChoose("Eject")); // nobody ejects the system
    m_volumes.mount(volume(m_card.url(), true));
    const auto eject = "Eject “" + QString::fromStdString(std::string{m_card.url().name()}) + "”";
    EXPECT_TRUE(canChoose(eject));
    m_library->toggleChecked(m_card / "DCIM/a.jpg");
    m_library->startCopy();
    EXPECT_FALSE(canChoose(eject));
    EXPECT_FALSE(canChoose("Copy Marked Files"));
    settle();
    EXPECT_TRUE(canChoose(eject));
    EXPECT_TRUE(canChoose("Copy Marked Files"));
}

} // namespace kelvara
