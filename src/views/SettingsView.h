#pragma once

#include "library/Settings.h"
#include "views/SideWindow.h"

#include <functional>

class QCheckBox;
class QVBoxLayout;

namespace kelvara {

class Picker;

/// The Settings window. What is chosen counts at once.
class SettingsView : public SideWindow {
    Q_OBJECT

public:
    /// `settings` outlives it.
    SettingsView(Settings& settings, QWidget* mainWindow);

private:
    void addDeletion();
    void addSharing();
    void addGrid();
    void addUsage();
    void addSupport();
    void beginSection();
    Picker* addPicker(const QString& label);
    QCheckBox* addToggle(const QString& title, bool isOn, std::function<void(bool)> onChange);
    void addNote(const QString& note);

    Settings& m_settings;
    QVBoxLayout* m_column;
};

} // namespace kelvara
