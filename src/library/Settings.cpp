#include "library/Settings.h"

#include "library/PreferenceKeys.h"
#include "platform/Preferences.h"
#include "services/ShareService.h"

namespace kelvara {

bool Settings::isOn(std::string_view key) const { return m_preferences.boolean(key).value_or(true); }

void Settings::setOn(Setting setting, std::string_view key, bool isOn) {
    if (this->isOn(key) == isOn) return;
    m_preferences.setBoolean(key, isOn);
    didChange(setting);
}

bool Settings::sharesAnonymousUsage() const { return isOn(PreferenceKeys::shareAnonymousUsage); }
void Settings::setSharesAnonymousUsage(bool shares) {
    setOn(Setting::shareAnonymousUsage, PreferenceKeys::shareAnonymousUsage, shares);
}

bool Settings::cardDeleteErases() const { return isOn(PreferenceKeys::cardDeleteErases); }
void Settings::setCardDeleteErases(bool erases) {
    setOn(Setting::cardDeleteErases, PreferenceKeys::cardDeleteErases, erases);
}

bool Settings::gridShowsInfo() const { return isOn(PreferenceKeys::gridShowsInfo); }
void Settings::setGridShowsInfo(bool shows) {
    setOn(Setting::gridShowsInfo, PreferenceKeys::gridShowsInfo, shows);
}

std::int64_t Settings::shareLongEdge() const {
    const auto pixels = m_preferences.integer(PreferenceKeys::shareLongEdge).value_or(0);
    return pixels > 0 ? pixels : ShareService::usualLongEdge;
}

void Settings::setShareLongEdge(std::int64_t pixels) {
    if (shareLongEdge() == pixels) return;
    m_preferences.setInteger(PreferenceKeys::shareLongEdge, pixels);
    didChange(Setting::shareLongEdge);
}

} // namespace kelvara
