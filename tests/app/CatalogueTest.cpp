#include "app/Catalogue.h"

#include "text/Localized.h"
#include "views/CopyTexts.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace kelvara {

namespace {

/// Keys and programs of the desktop that the texts were first drawn for.
const QRegularExpression& foreignWords() {
    static const QRegularExpression words{QStringLiteral("[⌘⌥⇧⌃⏎↩⌫]|Finder|macOS|AirDrop")};
    return words;
}

struct SourceText {
    QString file; ///< The stem of its name, which is also the class's.
    QString text;
};

/// The texts of the source that go through the catalogue and name something foreign.
QList<SourceText> foreignTexts() {
    // A long text is several literals, one after the other.
    static const QRegularExpression call{
        QStringLiteral("(?:\\btr|localized)\\(\\s*\"((?:[^\"\\\\]|\\\\.|\"\\s*\")*)\"")};
    static const QRegularExpression seam{QStringLiteral("(?<!\\\\)\"\\s*\"")};
    QList<SourceText> result;
    QDirIterator files{QStringLiteral(KELVARA_SOURCE_FOLDER),
                       {QStringLiteral("*.cpp")},
                       QDir::Files,
                       QDirIterator::Subdirectories};
    while (files.hasNext()) {
        QFile file{files.next()};
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const auto source = QString::fromUtf8(file.readAll());
        for (auto matches = call.globalMatch(source); matches.hasNext();) {
            const auto text = matches.next().captured(1).remove(seam);
            if (text.contains(foreignWords())) result.append({QFileInfo{file}.completeBaseName(), text});
        }
    }
    return result;
}

QString translated(const SourceText& source) {
    const auto text = source.text.toUtf8();
    for (const auto& context : {QStringLiteral("kelvara::") + source.file, source.file,
                                QStringLiteral("core"), QStringLiteral("kelvara::CopyReportView")}) {
        const auto result = QCoreApplication::translate(context.toUtf8(), text);
        if (result != source.text) return result;
    }
    return source.text;
}

} // namespace

TEST(CatalogueTest, textsAreInTheWordsOfTheDesktopInViewsAndCore) {
    ASSERT_TRUE(installPlatformCatalogue(*QCoreApplication::instance()));
    EXPECT_EQ(copyButtonTexts(2, {}).title, QString{"Copy 2 marked…  Ctrl+Enter"});
    EXPECT_EQ(localized("Choose where marked photos are copied. Use New Folder to make one."),
              "Choose where marked photos are copied. Use Create Folder to make one.");
    EXPECT_EQ(localized("Cancelled"), "Cancelled");
}

TEST(CatalogueTest, noTextOfTheSourceSpeaksOfAnotherDesktopAfterwards) {
    ASSERT_TRUE(installPlatformCatalogue(*QCoreApplication::instance()));
    const auto texts = foreignTexts();
    EXPECT_GE(texts.size(), 6);
    for (const auto& source : texts) {
        EXPECT_FALSE(translated(source).contains(foreignWords()))
            << source.file.toStdString() << ": " << source.text.toStdString();
    }
}

} // namespace kelvara
