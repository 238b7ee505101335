#include "views/PresetSheets.h"

#include "views/PresetImportView.h"
#include "views/Sheet.h"
#include "views/Text.h"

#include <QPushButton>

namespace kelvara {

PresetSheets::PresetSheets(PresetStore& presets, Sheet& sheet, QObject* parent)
    : QObject{parent}, m_presets{presets}, m_sheet{sheet} {
    using P = PresetProperty;
    m_subscription = m_presets.observe({P::importReport, P::importError, P::removeError},
                                       [this](const auto&) { refresh(); });
}

void PresetSheets::refresh() {
    if (!m_presets.removeError().empty()) return showRemoveError();
    const auto& report = m_presets.importReport();
    if (!report) return m_sheet.dismiss();
    const auto hasNews =
        !report->foundNone() || !report->problems.empty() || !m_presets.importError().empty();
    // Who stopped it before anything came in knows that.
    hasNews ? showImport(*report) : m_presets.dismissImport();
}

void PresetSheets::showImport(const PresetImportReport& report) {
    auto* view = new PresetImportView{report, text(m_presets.importError())};
    m_sheet.present(view);
    m_sheet.setButtons(view->doneButton(), view->doneButton());
    connect(view->doneButton(), &QPushButton::clicked, this, [this] { m_presets.dismissImport(); });
}

void PresetSheets::showRemoveError() {
    auto* alert = new AlertView{tr("Couldn't Move to Trash"), text(m_presets.removeError())};
    m_sheet.present(alert);
    m_sheet.setButtons(alert->defaultButton(), alert->defaultButton());
    connect(alert->defaultButton(), &QPushButton::clicked, this, [this] { m_presets.clearRemoveError(); });
}

void PresetSheets::confirmRemoval(const std::string& presetID) {
    const auto preset = m_presets.preset(presetID);
    if (!preset || !m_presets.isImported(presetID)) return;
    auto* question = new AlertView{tr("Move “%1” to the Trash?").arg(text(preset->title)),
                                   tr("The preset's file can be put back from there."),
                                   {tr("Cancel"), tr("Move to Trash")}};
    m_sheet.present(question);
    m_sheet.setButtons(question->defaultButton(), question->otherButton());
    connect(question->otherButton(), &QPushButton::clicked, this, [this] { m_sheet.dismiss(); });
    connect(question->defaultButton(), &QPushButton::clicked, this, [this, presetID] {
        m_sheet.dismiss();
        m_presets.remove(presetID);
    });
}

} // namespace kelvara
