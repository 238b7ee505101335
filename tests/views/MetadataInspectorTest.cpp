#include "views/MetadataInspector.h"
#include "views/Inspector.h"
#include "views/PictureFixture.h"
#include "views/SelectableText.h"
#include "views/StarControl.h"

#include <QTest>

namespace kelvara {

namespace {

class MetadataInspectorTest : public PictureFixture {
protected:
    MetadataInspector& show(int photos) {
        addPhotos(photos);
        open();
        m_inspector = std::make_unique<MetadataInspector>(*m_library, m_metadata);
        m_inspector->resize(300, 800);
        m_inspector->show();
        QCoreApplication::processEvents();
        return *m_inspector;
    }
    [[nodiscard]] QString value(const QString& label) const {
        for (const auto* text : m_inspector->findChildren<SelectableText*>()) {
            if (text->accessibleName() == label) return text->toPlainText();
        }
        return QStringLiteral("(missing)");
    }
    void clickStar(int star) const {
        auto* stars = m_inspector->findChild<StarControl*>();
        QTest::mouseClick(stars, Qt::LeftButton, {},
                          {stars->width() * (2 * star - 1) / 10, stars->height() / 2});
    }
    [[nodiscard]] static QToolButton* button(QWidget& in, const QString& name) {
        for (auto* button : in.findChildren<QToolButton*>()) {
            if (button->accessibleName() == name) return button;
        }
        return nullptr;
    }

    std::unique_ptr<MetadataInspector> m_inspector;
};

} // namespace

TEST_F(MetadataInspectorTest, showsTheFocusedPhotoAndNeverAnother) {
    show(4);
    settlePictures();
    EXPECT_EQ(value(QStringLiteral("File")), QStringLiteral("p0000.jpg"));
    EXPECT_EQ(value(QStringLiteral("ISO")), QStringLiteral("100"));
    EXPECT_EQ(value(QStringLiteral("Lens")), QStringLiteral("–"));
    m_library->setFocusedID(photo(1));
    m_reading.runAll(); // on its way
    m_library->setFocusedID(photo(2));
    EXPECT_EQ(value(QStringLiteral("File")), QStringLiteral("p0002.jpg"));
    EXPECT_EQ(value(QStringLiteral("ISO")), QString{});
    m_main.runAll();
    EXPECT_EQ(value(QStringLiteral("ISO")), QString{});
    settlePictures();
    EXPECT_EQ(value(QStringLiteral("ISO")), QStringLiteral("102"));
}

TEST_F(MetadataInspectorTest, readsNothingWhileItIsHidden) {
    show(3);
    m_inspector->hide();
    m_library->setFocusedID(photo(1));
    settlePictures();
    EXPECT_EQ(m_metadataReads, 0);
    m_inspector->show();
    settlePictures();
    EXPECT_EQ(value(QStringLiteral("ISO")), QStringLiteral("101"));
    EXPECT_EQ(m_metadataReads, 1);
}

TEST_F(MetadataInspectorTest, aClickOnAStarRatesAndOneOnTheLastTakesItBack) {
    show(2);
    EXPECT_EQ(value(QStringLiteral("Saved To")), QStringLiteral("This session only"));
    clickStar(3);
    EXPECT_EQ(m_library->rating(photo(0)).rawValue(), 3);
    EXPECT_EQ(m_library->rating(photo(1)).rawValue(), 0);
    clickStar(5);
    EXPECT_EQ(m_library->rating(photo(0)).rawValue(), 5);
    clickStar(5);
    EXPECT_EQ(m_library->rating(photo(0)).rawValue(), 0);
    m_library->toggleChecked(photo(0));
    EXPECT_EQ(value(QStringLiteral("Copy")), QStringLiteral("Marked"));
}

TEST_F(MetadataInspectorTest, everythingElseIsReadWhenSomebodyWantsToSeeIt) {
    show(3);
    settlePictures();
    EXPECT_EQ(m_dumps, 0);
    auto* disclosure = button(*m_inspector, QStringLiteral("All Metadata"));
    disclosure->click();
    settlePictures();
    EXPECT_TRUE(value(QStringLiteral("All Metadata")).contains(QStringLiteral("p0000.jpg")));
    m_library->setFocusedID(photo(1));
    EXPECT_EQ(value(QStringLiteral("All Metadata")), QString{});
    settlePictures();
    EXPECT_TRUE(value(QStringLiteral("All Metadata")).contains(QStringLiteral("p0001.jpg")));
    disclosure->click();
    m_library->setFocusedID(photo(2));
    settlePictures();
    EXPECT_EQ(m_dumps, 2);
}

TEST_F(MetadataInspectorTest, tabsChooseAndTogglesShowAndHide) {
    open();
    auto* presets = new QWidget;
    Inspector inspector{*m_library, {.presets = presets}};
    InspectorToggles toggles{*m_library};
    inspector.show();
    button(inspector, QStringLiteral("Presets"))->click();
    button(inspector, QStringLiteral("Presets"))->click(); // chooses, and never hides
    EXPECT_EQ(m_library->inspectorTab(), InspectorTab::presets);
    EXPECT_TRUE(presets->isVisible());
    auto* toggle = button(toggles, QStringLiteral("Presets"));
    EXPECT_TRUE(toggle->isChecked());
    toggle->click();
    EXPECT_FALSE(m_library->showsInspector());
    EXPECT_FALSE(toggle->isChecked());
    button(toggles, QStringLiteral("Info"))->click();
    EXPECT_TRUE(m_library->showsInspector());
    EXPECT_FALSE(presets->isVisible());
}

} // namespace kelvara
