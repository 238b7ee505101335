#include "views/MetadataInspector.h"

#include "text/ByteCount.h"
#include "text/Localized.h"
#include "views/FormGroup.h"
#include "views/SelectableText.h"
#include "views/StarControl.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QDateTime>
#include <QEvent>
#include <QHBoxLayout>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kelvara {

namespace {

QString cameraText(const ExifInfo& info) {
    QStringList parts;
    for (const auto& part : {info.cameraMake, info.cameraModel}) {
        if (part) parts.append(text(*part));
    }
    return parts.join(u' ');
}

/// "Mar 9, 2024 2:05:33 PM": the user's long date with a short month and without the day of the week, and the
/// time with seconds.
QString dateText(const ExifInfo& info) {
    if (!info.captureDate) return {};
    const auto day = std::chrono::floor<std::chrono::days>(*info.captureDate);
    const std::chrono::year_month_day date{day};
    const auto seconds = static_cast<int>((*info.captureDate - day).count());
    const QLocale locale;
    static const QRegularExpression weekday{QStringLiteral("dddd[,.]?\\s*|,?\\s*dddd")};
    static const QRegularExpression zone{QStringLiteral("\\s*t+\\b")};
    const auto dateFormat = locale.dateFormat(QLocale::LongFormat)
                                .remove(weekday)
                                .replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    const auto timeFormat = locale.timeFormat(QLocale::LongFormat).remove(zone);
    const QDate shown{int{date.year()}, static_cast<int>(unsigned{date.month()}),
                      static_cast<int>(unsigned{date.day()})};
    return locale.toString(shown, dateFormat) + u' ' +
           locale.toString(QTime::fromMSecsSinceStartOfDay(seconds * 1000), timeFormat);
}

QString orDash(const QString& text) { return text.isEmpty() ? QStringLiteral("–") : text; }

/// One table for all sections, so that their columns are aligned.
QString sectionsHTML(const std::vector<MetadataSection>& sections) {
    const auto& theme = Theme::current();
    QString html = QStringLiteral("<table width='100%' cellspacing='0' cellpadding='2'>");
    bool isFirst = true;
    for (const auto& section : sections) {
        html += QStringLiteral("<tr><td colspan='2' style='padding-top:%1px;'><b>%2</b></td></tr>")
                    .arg(isFirst ? 0 : spacing::medium)
                    .arg(text(section.title).toHtmlEscaped());
        isFirst = false;
        for (const auto& row : section.rows) {
            html += QStringLiteral(
                        "<tr><td width='44%' style='color:%1; padding-right:6px;'>%2</td><td>%3</td></tr>")
                        .arg(theme.secondaryText.name(), text(row.label).toHtmlEscaped(),
                             text(row.value).toHtmlEscaped());
        }
    }
    return html + QStringLiteral("</table>");
}

} // namespace

MetadataInspector::MetadataInspector(LibraryViewModel& library, MetadataService& metadata, QWidget* parent)
    : Panel{&Theme::panel, parent}, m_library{library}, m_metadata{metadata} {
    m_form = makeForm();
    auto* empty = makeLabel(TextRole::body, Tone::quiet, this, tr("Select a photo to see its details."));
    empty->setWordWrap(true);
    empty->setAlignment(Qt::AlignCenter);
    empty->setContentsMargins(spacing::huge, 0, spacing::huge, 0);
    m_empty = empty;
    m_pages = new QStackedLayout{this};
    m_pages->setContentsMargins({});
    m_pages->addWidget(m_form);
    m_pages->addWidget(m_empty);

    using P = LibraryProperty;
    m_subscriptions.push_back(
        m_library.observe({P::focusedID, P::visibleItems, P::items}, [this](const auto&) { follow(); }));
    m_subscriptions.push_back(
        m_library.observe({P::ratings, P::checkedIDs}, [this](const auto&) { refreshPhoto(); }));
    follow();
}

QWidget* MetadataInspector::makeForm() {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout{content};
    column->setContentsMargins(spacing::medium, spacing::small, spacing::medium, spacing::large);
    column->setSpacing(spacing::large);
    column->addWidget(makePhoto());
    column->addWidget(makeCapture());
    column->addWidget(makeDump());
    column->addStretch(1);
    auto* area = new QScrollArea{this};
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->viewport()->setAutoFillBackground(false);
    area->setWidget(content);
    // What the scroll bar takes is taken from the margin, so that the form doesn't jump when it appears.
    auto* bar = area->verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, column, [column, bar](int, int most) {
        const auto taken = most > 0 ? std::min(bar->sizeHint().width(), spacing::medium) : 0;
        column->setContentsMargins(spacing::medium, spacing::small, spacing::medium - taken, spacing::large);
    });
    content->setAutoFillBackground(false); // setWidget has turned it on
    return area;
}

FormGroup* MetadataInspector::makePhoto() {
    auto* group = new FormGroup{tr("Photo"), this};
    m_file = group->addText(tr("File"));
    m_size = group->addText(tr("Size"));
    m_dimensions = group->addText(tr("Dimensions"));
    auto* rating = new QWidget{group};
    m_stars = new StarControl{rating};
    m_unrated = makeLabel(TextRole::caption, Tone::quiet, rating, tr("None"));
    auto* row = new QHBoxLayout{rating};
    row->setContentsMargins({});
    row->setSpacing(spacing::small);
    row->addWidget(m_stars);
    row->addWidget(m_unrated);
    row->addStretch(1);
    group->addRow(tr("Rating"), rating);
    m_savedTo = group->addText(tr("Saved To"));
    m_savedToNote =
        makeLabel(TextRole::detail, Tone::quiet, group,
                  text(localized("Lightroom ignores sidecars for files without a RAW, so this rating "
                                 "isn't written to disk.")));
    m_savedToNote->setWordWrap(true);
    group->addWide(m_savedToNote);
    m_copy = group->addText(tr("Copy"));
    connect(m_stars, &StarControl::chosen, this,
            [this](Rating stars) { m_library.setRating(stars, FileURL{m_url}); });
    return group;
}

FormGroup* MetadataInspector::makeCapture() {
    auto* group = m_captureGroup = new FormGroup{tr("Capture"), this};
    const auto add = [&](const QString& label, QString (*value)(const ExifInfo&)) {
        m_capture.push_back({group->addText(label), value});
    };
    add(tr("Camera"), cameraText);
    add(tr("Lens"), [](const ExifInfo& info) { return text(info.lensModel.value_or("")); });
    add(tr("Aperture"), [](const ExifInfo& info) { return text(info.apertureText()); });
    add(tr("Shutter"), [](const ExifInfo& info) { return text(info.shutterText()); });
    add(tr("ISO"), [](const ExifInfo& info) { return info.iso ? QString::number(*info.iso) : QString{}; });
    add(tr("Focal Length"), [](const ExifInfo& info) { return text(info.focalLengthText()); });
    add(tr("Exposure Bias"), [](const ExifInfo& info) { return text(info.exposureBiasText()); });
    add(tr("Captured"), dateText);
    return group;
}

QWidget* MetadataInspector::makeDump() {
    auto* whole = new QWidget{this};
    m_disclosure =
        makeIconButton(u"chevron.right", tr("All Metadata"), tr("Show everything the file says"), whole);
    m_disclosure->setText(tr("All Metadata"));
    m_disclosure->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_disclosure->setFont(kelvara::font(TextRole::caption));
    m_disclosure->setObjectName(QStringLiteral("disclosure"));
    m_disclosure->setCheckable(true);
    setSymbol(*m_disclosure, symbolIcon(u"chevron.right", &Theme::secondaryText), 12);
    m_dumpState = makeLabel(TextRole::caption, Tone::quiet, whole);
    m_dump = new SelectableText{whole};
    m_dump->setAccessibleName(tr("All Metadata"));
    m_dumpState->hide();
    m_dump->hide();
    auto* column = new QVBoxLayout{whole};
    column->setContentsMargins({});
    column->setSpacing(spacing::small);
    column->addWidget(m_disclosure, 0, Qt::AlignLeft);
    auto* inset = new QVBoxLayout;
    inset->setContentsMargins(spacing::small + 2, 0, spacing::small + 2, 0);
    inset->addWidget(m_dumpState);
    inset->addWidget(m_dump);
    column->addLayout(inset);
    connect(m_disclosure, &QToolButton::toggled, this, &MetadataInspector::setDumpOpen);
    return whole;
}

void MetadataInspector::follow() {
    const auto* item = m_library.focusedItem();
    m_pages->setCurrentWidget(item ? m_form : m_empty);
    const auto url = item && isVisible() ? item->url : FileURL{};
    if (url == m_url) return refreshPhoto();
    m_url = url;
    refreshPhoto();
    loadExif();
    loadSections();
}

void MetadataInspector::refreshPhoto() {
    const auto* item = m_library.focusedItem();
    if (!item || item->url != m_url) return;
    m_file->showText(nameText(m_url));
    m_size->showText(text(byteCountText(item->fileSize)));
    const auto rating = m_library.rating(m_url);
    m_stars->setRating(rating);
    m_unrated->setVisible(rating == Rating{});
    const auto isKept = m_library.keepsRatingInSidecar(m_url);
    m_savedTo->showText(isKept ? tr("Read by Lightroom Classic and Capture One") : tr("This session only"));
    m_savedToNote->setVisible(!isKept);
    m_copy->showText(m_library.isChecked(m_url) ? tr("Marked") : tr("Not marked"));
}

void MetadataInspector::loadExif() {
    m_exifRequest = {};
    m_isLoadingExif = false;
    if (m_url.isEmpty()) return;
    const auto known = m_metadata.cachedExif(m_url);
    // Nothing rather than what belongs to the photo before.
    showExif(known);
    if (known) return;
    m_isLoadingExif = true;
    m_exifRequest = m_metadata.exif(m_url, MetadataService::Priority::visible, [this](const ExifInfo& info) {
        m_isLoadingExif = false;
        showExif(info);
    });
}

void MetadataInspector::showExif(const std::optional<ExifInfo>& info) {
    const auto hasSize = info && info->pixelWidth && info->pixelHeight;
    const auto dimensions =
        hasSize ? tr("%1 × %2").arg(*info->pixelWidth).arg(*info->pixelHeight) : QString{};
    m_dimensions->showText(info ? orDash(dimensions) : QString{});
    // Of a video nothing is known, and a column of dashes says less than none.
    const auto isKnown = [&](const CaptureRow& row) { return !row.text(*info).isEmpty(); };
    m_captureGroup->setVisible(!info || std::ranges::any_of(m_capture, isKnown));
    for (const auto& row : m_capture) row.value->showText(info ? orDash(row.text(*info)) : QString{});
}

void MetadataInspector::setDumpOpen(bool open) {
    setSymbol(*m_disclosure, symbolIcon(open ? u"chevron.down" : u"chevron.right", &Theme::secondaryText),
              12);
    loadSections();
}

void MetadataInspector::loadSections() {
    m_sectionsRequest = {};
    m_sections.clear();
    m_isLoadingSections = m_disclosure->isChecked() && !m_url.isEmpty();
    showSections();
    if (!m_isLoadingSections) return;
    m_sectionsRequest = m_metadata.detailedMetadata(m_url, [this](std::vector<MetadataSection> sections) {
        m_isLoadingSections = false;
        m_sections = std::move(sections);
        showSections();
    });
}

void MetadataInspector::showSections() {
    const auto isOpen = m_disclosure->isChecked();
    m_dumpState->setText(m_isLoadingSections ? tr("Reading…") : tr("This file says nothing about itself."));
    m_dumpState->setVisible(isOpen && m_sections.empty());
    m_dump->setVisible(isOpen && !m_sections.empty());
    if (m_sections.empty()) return m_dump->clear();
    m_dump->setHtml(sectionsHTML(m_sections));
}

void MetadataInspector::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    follow();
}

void MetadataInspector::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    follow();
}

void MetadataInspector::changeEvent(QEvent* event) {
    Panel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_dump) showSections();
}

} // namespace kelvara
