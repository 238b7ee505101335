#include "views/ExportTexts.h"

#include "views/Text.h"

#include <QCoreApplication>

namespace kelvara {

namespace {

using Format = ExportSettings::Format;

struct ExportTexts {
    Q_DECLARE_TR_FUNCTIONS(ExportTexts)
};
QString tr(const char* source) { return ExportTexts::tr(source); }

QString formatNote(const ExportSettings& settings) {
    switch (settings.format) {
    case Format::jpeg:
        return tr("Smallest files, readable everywhere. 90 or above keeps compression hard to see.");
    case Format::heif:
        return tr("About half the size of a JPEG at the same quality; best for Apple devices.");
    case Format::png:
        break;
    }
    return tr("Lossless, no compression artifacts. Around %1 per photo at full size.")
        .arg(settings.uses16Bit ? tr("25–70 MB") : tr("10–35 MB"));
}

} // namespace

QString exportTitle(std::size_t count) {
    if (count == 1) return tr("Export 1 Photo");
    return tr("Export %1 Photos").arg(countText(static_cast<std::int64_t>(count)));
}

QString exportNote(const ExportSettings& settings) {
    return formatNote(settings) + u' ' +
           tr("RAW files are exported from the camera's full-size embedded preview.");
}

QString bitDepthHelp(Format format) {
    if (format == Format::jpeg) return tr("JPEG files always have 8 bits per channel");
    if (format == Format::heif)
        return tr(
            "16-bit gives HEIF files 10 bits per channel, which keep smooth gradients after strong edits");
    return tr("16-bit keeps smooth gradients after strong edits, at about twice the file size");
}

QString longEdgeText(const std::optional<int>& longEdge) {
    return longEdge ? tr("%1 px long edge").arg(*longEdge) : tr("Full Size");
}

} // namespace kelvara
