#pragma once

#include "presets/PresetStore.h"

#include <QObject>

namespace kelvara {

class Sheet;

/// Keeps a sheet in step with what the preset store has to say: the outcome of an import, and what could not
/// be removed. Asks before a preset is removed.
class PresetSheets : public QObject {
    Q_OBJECT

public:
    /// Everything outlives it.
    PresetSheets(PresetStore& presets, Sheet& sheet, QObject* parent = nullptr);

    void confirmRemoval(const std::string& presetID);

private:
    void refresh();
    void showImport(const PresetImportReport& report);
    void showRemoveError();

    PresetStore& m_presets;
    Sheet& m_sheet;
    Subscription m_subscription;
};

} // namespace kelvara
