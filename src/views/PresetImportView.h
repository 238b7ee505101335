#pragma once

#include "presets/PresetImport.h"

#include <QString>
#include <QWidget>

class QPushButton;

namespace kelvara {

/// What became of an import, in words.
struct PresetImportTexts {
    QString title;
    QString note;          ///< Empty for none.
    bool wentWell = false; ///< Something came in or was there already, and nothing was refused.
};
/// `error` is why it ended early or gave nothing; empty for neither.
[[nodiscard]] PresetImportTexts presetImportTexts(const PresetImportReport& report, const QString& error);

/// What a sheet shows when presets have been imported: how many came in, and which did not and why.
class PresetImportView : public QWidget {
    Q_OBJECT

public:
    PresetImportView(const PresetImportReport& report, const QString& error, QWidget* parent = nullptr);
    [[nodiscard]] QPushButton* doneButton() const { return m_done; }

private:
    QPushButton* m_done;
};

} // namespace kelvara
