// LibraryViewModel: how photos are exported; the export itself runs as a copy does.

#include "library/LibraryViewModel.h"
#include "library/PreferenceKeys.h"
#include "platform/Desktop.h"
#include "platform/Preferences.h"

namespace kelvara {

void LibraryViewModel::setExportSettings(const ExportSettings& settings) {
    if (assign(Property::exportSettings, m_exportSettings, settings)) {
        m_services.preferences.setText(PreferenceKeys::exportSettings, settings.json());
    }
}

void LibraryViewModel::showExportOptions(std::vector<PhotoItem> items, std::optional<ExportLook> look) {
    if (isCopying()) return;
    if (items.empty()) {
        m_services.desktop.beep();
        return;
    }
    m_exportItems = std::move(items);
    m_pendingExportLook = std::move(look);
    m_copyState = ConfiguringExport{};
    didChange(Property::copyState);
}

void LibraryViewModel::handOver(const CopyService::Report& report) const {
    // Who cancels wants no more questions; the report still offers the files.
    if (!m_copyJob.sharingFrom || report.exported.empty() || report.wasCancelled) return;
    m_services.onShare(report.exported, *m_copyJob.sharingFrom,
                       m_copyExport->settings.appliesLook ? m_copyExport->look : std::nullopt);
}

} // namespace kelvara
