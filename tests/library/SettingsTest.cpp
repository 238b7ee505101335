#include "library/Settings.h"

#include "library/AllowedAnalytics.h"
#include "library/PreferenceKeys.h"
#include "support/FakeAnalytics.h"
#include "support/FakeDesktop.h"

#include <gtest/gtest.h>

namespace kelvara {

TEST(SettingsTest, aFreshInstallationHasTheDefaultsAndWritesNone) {
    MemoryPreferences preferences;
    Settings settings{preferences};
    EXPECT_TRUE(settings.cardDeleteErases());
    EXPECT_EQ(settings.shareLongEdge(), 2048);
    EXPECT_TRUE(settings.gridShowsInfo());
    EXPECT_TRUE(settings.sharesAnonymousUsage());
    settings.setCardDeleteErases(true);
    settings.setShareLongEdge(2048);
    EXPECT_FALSE(preferences.boolean(PreferenceKeys::cardDeleteErases));
    EXPECT_FALSE(preferences.integer(PreferenceKeys::shareLongEdge));
    preferences.setInteger(PreferenceKeys::shareLongEdge, -5);
    EXPECT_EQ(settings.shareLongEdge(), 2048);
}

TEST(SettingsTest, aChangeIsWrittenAndToldToThoseWhoReadIt) {
    MemoryPreferences preferences;
    Settings settings{preferences};
    int gridChanges = 0;
    const auto subscription = settings.observe({Setting::gridShowsInfo}, [&](const auto&) {
        ++gridChanges;
        EXPECT_EQ(preferences.boolean("gridShowsInfo"), false);
    });
    settings.setGridShowsInfo(false);
    settings.setGridShowsInfo(false);
    settings.setSharesAnonymousUsage(false);
    settings.setShareLongEdge(1600);
    EXPECT_EQ(gridChanges, 1);
    EXPECT_EQ(preferences.boolean("shareAnonymousUsage"), false);
    EXPECT_EQ(preferences.integer("shareLongEdge"), 1600);
}

TEST(SettingsTest, usageIsRecordedOnlyWhileItIsAllowedAndWhatWaitsIsDroppedAfterwards) {
    MemoryPreferences preferences;
    preferences.setBoolean(PreferenceKeys::shareAnonymousUsage, false);
    Settings settings{preferences};
    FakeAnalytics client;
    AllowedAnalytics analytics{settings, client};
    analytics.record(AppStarted{});
    EXPECT_TRUE(client.events.empty());
    settings.setSharesAnonymousUsage(true);
    analytics.record(PhotosCopied{.count = 3});
    EXPECT_EQ(client.events, std::vector<UsageEvent>{PhotosCopied{.count = 3}});
    settings.setSharesAnonymousUsage(false);
    EXPECT_TRUE(client.events.empty());
}

} // namespace kelvara
