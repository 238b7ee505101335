#include "views/DeleteSheet.h"

#include "library/PreferenceKeys.h"
#include "views/DeletePreviewStrip.h"
#include "views/DeleteTexts.h"
#include "views/PictureFixture.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

namespace kelvara {
namespace {

PhotoItem item(const std::string& name) { return {FileURL{"/card/" + name}, 1, std::nullopt}; }

TEST(DeleteTextsTest, sayWhatGoesWhereAndHowMuch) {
    const std::vector one{item("a%1.NEF")};
    const std::vector<PhotoItem> many(1200, item("a.NEF"));
    EXPECT_EQ(deleteTexts(one, true).title, QString{"Permanently delete “a%1.NEF”?"});
    EXPECT_EQ(deleteTexts(one, false).title, QString{"Move “a%1.NEF” to the Trash?"});
    EXPECT_EQ(deleteTexts(many, true).title, QString{"Permanently delete 1,200 files?"});
    EXPECT_EQ(deleteTexts(many, false).title, QString{"Move 1,200 files to the Trash?"});
    EXPECT_EQ(deleteTexts(one, true).button, QString{"Delete"});
    EXPECT_EQ(deleteTexts(one, false).button, QString{"Move to Trash"});
    EXPECT_EQ(deleteTexts(many, true).button, QString{"Delete 1,200 Files"});
    EXPECT_EQ(deleteTexts(many, false).button, QString{"Move 1,200 Files to Trash"});
    EXPECT_EQ(deleteTexts(one, true).message,
              QString{"This can’t be undone: files on a memory card are erased, not moved to the Trash, so "
                      "their space is freed at once."});
    EXPECT_EQ(deleteTexts(one, false).message,
              QString{"The files are moved to the Trash, where they can be put back from Finder."});

    const std::vector paired{item("a.mov"), item("a.NEF"), item("b.dng"), item("c.jpg")};
    EXPECT_EQ(pairedFilesText(paired),
              QString{"Also delete the matching JPG/MOV/RAW with the same name (4 files)"});
    EXPECT_EQ(hiddenText(3, 0), QString{});
    EXPECT_EQ(hiddenText(3, 1), QString{"A filter hides one of them at the moment."});
    EXPECT_EQ(notCopiedText(1, 1), QString{"It was not copied in this session."});
    EXPECT_EQ(notCopiedText(3, 2), QString{"2 of them were not copied in this session."});
    EXPECT_EQ(notCopiedText(3, 0), QString{"All of them were copied in this session."});
}

class DeleteSheetTest : public PictureFixture {
protected:
    DeleteSheet& ask(std::size_t count) {
        std::vector<PhotoItem> items;
        for (std::size_t i = 0; i < count; ++i) items.push_back(m_library->visibleItems()[i]);
        m_library->requestDelete(items);
        m_sheet = std::make_unique<DeleteSheet>(*m_library, m_sources);
        m_sheet->show();
        return *m_sheet;
    }
    [[nodiscard]] bool shows(const QString& text) const {
        for (const auto* label : m_sheet->findChildren<QLabel*>()) {
            if (!label->isHidden() && label->text() == text) return true;
        }
        return false;
    }
    std::unique_ptr<DeleteSheet> m_sheet;
};

TEST_F(DeleteSheetTest, sixPicturesAndTheNumberOfTheOthersArrive) {
    addPhotos(12);
    open();
    auto& sheet = ask(12);
    const auto tiles = sheet.findChildren<DeletePreviewTile*>();
    EXPECT_EQ(tiles.size(), 6);
    EXPECT_TRUE(shows("+6"));
    EXPECT_TRUE(sheet.isLoading());
    EXPECT_TRUE(tiles[0]->picture().isNull());
    EXPECT_FALSE(tiles[0]->grab().isNull()); // the symbol
    settlePictures();
    EXPECT_FALSE(sheet.isLoading());
    const auto center = tiles[5]->grab().toImage().pixelColor(tiles[5]->rect().center());
    EXPECT_NEAR(center.hsvHue(), 5 * 17, 4);
    EXPECT_TRUE(sheet.findChildren<QCheckBox*>().isEmpty());
    ask(6);
    EXPECT_FALSE(shows("+0"));
}

TEST_F(DeleteSheetTest, theCheckBoxIsTheLibrarysAndWhatAFilterHidesIsCounted) {
    addPhoto("p0001.jpg", Qt::red);
    m_card.write("p0001.NEF", "raw");
    open().toggleExtension("NEF");
    auto& sheet = ask(1);
    auto* box = sheet.findChild<QCheckBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_FALSE(box->isChecked());
    EXPECT_FALSE(shows("A filter hides one of them at the moment."));
    box->click();
    EXPECT_TRUE(m_library->deletesPairedFiles());
    EXPECT_TRUE(shows("A filter hides one of them at the moment."));
    EXPECT_EQ(sheet.defaultButton(), sheet.deleteButton());
    sheet.deleteButton()->click();
    settle();
    EXPECT_EQ(m_trash.names().size(), 2U);
}

TEST_F(DeleteSheetTest, onACardReturnIsNotEnoughAndWhatWasNotCopiedIsSaid) {
    addPhotos(3);
    m_volumes.mounted = {volume(m_card.url(), true)};
    m_preferences.setText(PreferenceKeys::copyDestination, (m_card.url().path() + "-kept"));
    open();
    m_library->toggleChecked(photo(0));
    m_library->startCopy();
    settle();
    auto& sheet = ask(3);
    EXPECT_EQ(sheet.defaultButton(), sheet.cancelButton());
    EXPECT_TRUE(shows("2 of them were not copied in this session."));
    sheet.cancelButton()->click();
    EXPECT_FALSE(m_library->pendingDeletion());
    std::filesystem::remove_all(m_card.url().path() + "-kept");
}

} // namespace
} // namespace kelvara
