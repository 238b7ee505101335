#include "views/ExportOptionsView.h"

#include "library/LibraryFixture.h"
#include "library/PreferenceKeys.h"
#include "views/ExportTexts.h"
#include "views/Picker.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QToolButton>

namespace kelvara {
namespace {

using Format = ExportSettings::Format;

TEST(ExportTextsTest, saysWhatTheFilesAreGoodFor) {
    const auto note = [](Format format, bool uses16Bit = false) {
        ExportSettings settings;
        settings.format = format;
        settings.uses16Bit = uses16Bit;
        return exportNote(settings);
    };
    const QString raw{" RAW files are exported from the camera's full-size embedded preview."};
    EXPECT_EQ(note(Format::jpeg),
              "Smallest files, readable everywhere. 90 or above keeps compression hard to see." + raw);
    EXPECT_EQ(note(Format::heif),
              "About half the size of a JPEG at the same quality; best for Apple devices." + raw);
    EXPECT_EQ(note(Format::png),
              "Lossless, no compression artifacts. Around 10–35 MB per photo at full size." + raw);
    EXPECT_EQ(note(Format::png, true),
              "Lossless, no compression artifacts. Around 25–70 MB per photo at full size." + raw);
    EXPECT_EQ(exportTitle(1), QString{"Export 1 Photo"});
    EXPECT_EQ(exportTitle(1200), QString{"Export 1,200 Photos"});
}

class ExportOptionsViewTest : public LibraryFixture {
protected:
    ExportOptionsView& open(const std::optional<ExportLook>& look = {}) {
        m_card.write("a.jpg", "1");
        m_card.write("a.NEF", "22");
        m_card.write("b.jpg", "333");
        start(m_card.url()).showExportOptions(m_library->items(), look);
        m_view = std::make_unique<ExportOptionsView>(*m_library);
        m_view->show();
        return *m_view;
    }
    template <typename W> W* find(const QString& title) const {
        for (auto* widget : m_view->findChildren<W*>()) {
            if (widget->accessibleName() == title) return widget;
            if constexpr (std::is_base_of_v<QAbstractButton, W> || std::is_same_v<W, QLabel>) {
                if (widget->text() == title) return widget;
            }
        }
        ADD_FAILURE() << title.toStdString();
        return nullptr;
    }
    [[nodiscard]] ExportSettings remembered() const {
        return ExportSettings::fromJSON(m_preferences.text(PreferenceKeys::exportSettings).value_or(""))
            .value();
    }
    std::unique_ptr<ExportOptionsView> m_view;
};

TEST_F(ExportOptionsViewTest, whatIsChosenIsRememberedAtOnce) {
    ExportLook look;
    look.adjustments[FileURL{"/a.xmp"}] = {};
    auto& view = open(look);
    EXPECT_EQ(view.accessibleName(), QString{"Export 2 Photos"}); // one of each shot
    find<QToolButton>("HEIF")->click();
    find<QSlider>("Quality")->setValue(80);
    find<QToolButton>("16-bit")->click();
    auto* size = find<Picker>("Size");
    QStringList sizes;
    for (int i = 0; i < size->count(); ++i) sizes += size->itemText(i);
    EXPECT_EQ(sizes, (QStringList{"Full Size", "4096 px long edge", "3072 px long edge", "2048 px long edge",
                                  "1600 px long edge"}));
    size->setCurrentIndex(3);
    emit size->activated(3);
    find<QCheckBox>("Apply Edits")->click();
    find<QCheckBox>("Include Location")->click();
    find<QCheckBox>("Sort into Date Folders")->click();
    const ExportSettings expected{.format = Format::heif,
                                  .quality = 0.8,
                                  .uses16Bit = true,
                                  .longEdge = 2048,
                                  .keepsLocation = false,
                                  .appliesLook = false};
    EXPECT_EQ(remembered(), expected);
    EXPECT_EQ(view.job().settings, expected);
    EXPECT_TRUE(view.job().look.has_value());
    EXPECT_TRUE(m_library->copiesIntoDateFolders());
    size->setCurrentIndex(0);
    emit size->activated(0);
    EXPECT_EQ(remembered().longEdge, std::nullopt);
}

TEST_F(ExportOptionsViewTest, whatHasNoEffectOnAFormatRestsAndKeepsWhatWasChosen) {
    open();
    find<QToolButton>("PNG")->click();
    EXPECT_FALSE(find<QSlider>("Quality")->isEnabled());
    find<QToolButton>("16-bit")->click();
    EXPECT_NE(find<QLabel>(exportNote(m_library->exportSettings())), nullptr);
    find<QToolButton>("JPEG")->click();
    EXPECT_TRUE(find<QSlider>("Quality")->isEnabled());
    EXPECT_TRUE(find<QToolButton>("8-bit")->isChecked());
    EXPECT_FALSE(find<QToolButton>("16-bit")->isEnabled());
    find<QToolButton>("HEIF")->click();
    EXPECT_TRUE(find<QToolButton>("16-bit")->isChecked());
}

TEST_F(ExportOptionsViewTest, showsSettingsFromElsewhereAsTheyAre) {
    ExportSettings settings;
    settings.quality = 0.915;
    settings.longEdge = 500;
    m_preferences.setText(PreferenceKeys::exportSettings, settings.json());
    m_preferences.setText(PreferenceKeys::copyDestination, "/media/A & B");
    open();
    EXPECT_NE(find<QLabel>("92"), nullptr);
    EXPECT_EQ(find<Picker>("Size")->currentText(), QString{"500 px long edge"});
    EXPECT_EQ(m_library->exportSettings(), settings);
    for (const auto* toggle : m_view->findChildren<QCheckBox*>())
        EXPECT_FALSE(toggle->text().startsWith("Apply"));
    auto* destination = find<QToolButton>("Destination: A & B");
    destination->click();
    m_chooser.answer(FolderChooser::Choice{FileURL{"/media/C"}, false});
    EXPECT_EQ(destination->text(), QString{"C"});
}

} // namespace
} // namespace kelvara
