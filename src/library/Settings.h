#pragma once

#include "model/Observable.h"

#include <cstdint>
#include <string_view>

namespace kelvara {

class Preferences;

/// The settings of the Settings window, for those who observe them.
enum class Setting { shareAnonymousUsage, cardDeleteErases, shareLongEdge, gridShowsInfo, count };

/// What the user decides in the Settings window: the preferences with their types and defaults. A change is
/// written and told to observers at once; nothing is written before there is one. Main thread.
class Settings : public Observable<Setting> {
public:
    /// `preferences` outlives it.
    explicit Settings(Preferences& preferences) : m_preferences{preferences} {}

    [[nodiscard]] bool sharesAnonymousUsage() const;
    void setSharesAnonymousUsage(bool shares);
    /// Whether deleting on a card erases at once; else files go to the card's Trash.
    [[nodiscard]] bool cardDeleteErases() const;
    void setCardDeleteErases(bool erases);
    /// The long edge of quickly shared JPEGs in pixels.
    [[nodiscard]] std::int64_t shareLongEdge() const;
    void setShareLongEdge(std::int64_t pixels);
    /// Whether thumbnails show file name and exposure.
    [[nodiscard]] bool gridShowsInfo() const;
    void setGridShowsInfo(bool shows);

private:
    [[nodiscard]] bool isOn(std::string_view key) const;
    void setOn(Setting setting, std::string_view key, bool isOn);

    Preferences& m_preferences;
};

} // namespace kelvara
