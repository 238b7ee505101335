#include "platform/linux/SettingsPreferences.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <limits>

namespace kelvara {
namespace {

class SettingsPreferencesTest : public testing::Test {
protected:
    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("below/kelvara.conf")); }

    /// What the next start of the program finds.
    [[nodiscard]] SettingsPreferences restarted() const { return SettingsPreferences{path()}; }

    void writeFile(const QByteArray& bytes) const {
        QDir{m_folder.path()}.mkpath(QStringLiteral("below"));
        QFile file{path()};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    [[nodiscard]] QByteArray fileBytes() const {
        QFile file{path()};
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
    }

    QTemporaryDir m_folder;
};

TEST_F(SettingsPreferencesTest, everyTypeComesBackAtOnceAndAfterARestart) {
    const auto expectAll = [](const Preferences& preferences) {
        EXPECT_EQ(preferences.boolean("yes"), true);
        EXPECT_EQ(preferences.boolean("no"), false);
        EXPECT_EQ(preferences.integer("low"), std::numeric_limits<std::int64_t>::min());
        EXPECT_EQ(preferences.number("third"), 1.0 / 3.0);
        EXPECT_EQ(preferences.number("huge"), 1.7976931348623157e308);
        EXPECT_EQ(preferences.text("name"), "Grüße, \"Welt\"; a=b\\n\n%41 @x");
        EXPECT_EQ(preferences.text("empty"), "");
        EXPECT_EQ(preferences.integer("gone"), std::nullopt);
    };
    {
        SettingsPreferences preferences{path()};
        preferences.setBoolean("yes", true);
        preferences.setBoolean("no", false);
        preferences.setInteger("low", std::numeric_limits<std::int64_t>::min());
        preferences.setNumber("third", 1.0 / 3.0);
        preferences.setNumber("huge", 1.7976931348623157e308);
        preferences.setText("name", "Grüße, \"Welt\"; a=b\\n\n%41 @x");
        preferences.setText("empty", "");
        preferences.setInteger("gone", 1);
        preferences.remove("gone");
        expectAll(preferences);
    }
    expectAll(restarted());
}

TEST_F(SettingsPreferencesTest, textsAreBytes) {
    const std::vector<std::string> awkward{
        "/card/\xff\xfe.NEF",   "@Variant", "@@",      "", "\xef\xbb\xbfmark",
        std::string{"a\0b", 3}, "ä, ö",     " spaces "};
    {
        SettingsPreferences preferences{path()};
        for (std::size_t i = 0; i < awkward.size(); ++i) {
            preferences.setText("text" + std::to_string(i), awkward[i]);
            preferences.setTexts("one" + std::to_string(i), {awkward[i]});
        }
        preferences.setTexts("all", awkward);
        preferences.setTexts("none", {});
        EXPECT_EQ(preferences.texts("all"), awkward);
        EXPECT_EQ(preferences.texts("none"), std::vector<std::string>{});
    }
    const auto preferences = restarted();
    for (std::size_t i = 0; i < awkward.size(); ++i) {
        EXPECT_EQ(preferences.text("text" + std::to_string(i)), awkward[i]);
        EXPECT_EQ(preferences.texts("one" + std::to_string(i)), std::vector{awkward[i]});
    }
    EXPECT_EQ(preferences.texts("all"), awkward);
    EXPECT_EQ(preferences.texts("none"), std::vector<std::string>{});
    EXPECT_EQ(preferences.texts("missing"), std::nullopt);
    EXPECT_EQ(preferences.text("all"), std::nullopt);
}

TEST_F(SettingsPreferencesTest, anythingButTheWantedTypeIsEmpty) {
    writeFile("[General]\n"
              "word=yes\nupper=TRUE\none=1\nfraction=1.5\ntail=12px\nspace=\" 7\"\nplus=+7\n"
              "big=9223372036854775808\nlist=1, 2\nnothing=\nnan=nan\ninf=inf\nover=1e999\n");
    const auto preferences = restarted();
    for (const auto* key : {"word", "upper", "one", "list", "nothing", "missing"}) {
        EXPECT_EQ(preferences.boolean(key), std::nullopt) << key;
    }
    for (const auto* key : {"word", "fraction", "tail", "space", "plus", "big", "list", "nothing"}) {
        EXPECT_EQ(preferences.integer(key), std::nullopt) << key;
    }
    for (const auto* key : {"word", "tail", "space", "list", "nothing", "nan", "inf", "over"}) {
        EXPECT_EQ(preferences.number(key), std::nullopt) << key;
    }
    EXPECT_EQ(preferences.integer("one"), 1);
    EXPECT_EQ(preferences.number("one"), 1.0);
}

TEST_F(SettingsPreferencesTest, aBrokenFileGivesDefaultsAndCanBeWrittenAgain) {
    writeFile(QByteArrayLiteral("\x7f\x45LF\0\0\xff[[[\n]=\n=\nno setting here\n@Variant(\0\n"));
    {
        auto preferences = restarted();
        EXPECT_EQ(preferences.boolean("show"), std::nullopt);
        preferences.setBoolean("show", true);
    }
    EXPECT_EQ(restarted().boolean("show"), true);
}

TEST_F(SettingsPreferencesTest, keysOfAnotherVersionStayInTheFile) {
    writeFile("[General]\nfuture=kept\n\n[Section]\nthing=kept too\n");
    {
        auto preferences = restarted();
        preferences.setInteger("mine", 5);
    }
    EXPECT_TRUE(fileBytes().contains("future=kept"));
    EXPECT_TRUE(fileBytes().contains("thing=kept too"));
    EXPECT_EQ(restarted().integer("mine"), 5);
}

TEST_F(SettingsPreferencesTest, anUnwritableFileIsReportedOnceAndDoesNoHarm) {
    writeFile("a file where a folder would have to be");
    testing::internal::CaptureStderr();
    {
        SettingsPreferences preferences{path() + QStringLiteral("/kelvara.conf")};
        preferences.setInteger("first", 1);
        EXPECT_EQ(preferences.integer("first"), 1);
    }
    const auto output = testing::internal::GetCapturedStderr();
    EXPECT_NE(output.find("can't be written"), std::string::npos);
    EXPECT_EQ(output.find("can't be written"), output.rfind("can't be written"));
    EXPECT_EQ(fileBytes(), "a file where a folder would have to be");
}

} // namespace
} // namespace kelvara
