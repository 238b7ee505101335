#include "views/SettingsView.h"

#include "views/Controls.h"
#include "views/Picker.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <set>
#include <utility>

namespace kelvara {

namespace {
constexpr int contentWidth = 460;
}

SettingsView::SettingsView(Settings& settings, QWidget* mainWindow)
    : SideWindow{tr("Settings"), mainWindow}, m_settings{settings} {
    m_column = new QVBoxLayout{this};
    m_column->setContentsMargins(spacing::huge, spacing::huge - 4, spacing::huge, spacing::huge - 4);
    m_column->setSpacing(spacing::small);
    m_column->setSizeConstraint(QLayout::SetFixedSize);
    addDeletion();
    addSharing();
    addGrid();
    addUsage();
    addSupport();
}

void SettingsView::addDeletion() {
    auto* picker = addPicker(tr("Delete on memory cards"));
    picker->addItem(tr("Erase at once"), true);
    picker->addItem(tr("Move to Trash"), false);
    picker->setCurrentIndex(picker->findData(m_settings.cardDeleteErases()));
    connect(picker, &Picker::currentIndexChanged, this,
            [this, picker] { m_settings.setCardDeleteErases(picker->currentData().toBool()); });
    addNote(tr("Erasing frees the card's space straight away. Files moved to a card's Trash only go once you "
               "empty the Trash in Finder. On other drives, deleted files always go to the Trash."));
}

void SettingsView::addSharing() {
    beginSection();
    auto* picker = addPicker(tr("Quick share size"));
    std::set<qlonglong> sizes{1024, 1600, 2048, 3072, 4096};
    sizes.insert(m_settings.shareLongEdge()); // the file of the settings may name another
    for (const auto size : sizes) picker->addItem(tr("%1 px long edge").arg(size), size);
    picker->setCurrentIndex(picker->findData(static_cast<qlonglong>(m_settings.shareLongEdge())));
    connect(picker, &Picker::currentIndexChanged, this,
            [this, picker] { m_settings.setShareLongEdge(picker->currentData().toLongLong()); });
    addNote(
        tr("Quick share is Share as JPEGs and AirDrop as JPEGs. Export lets you choose the size each time."));
}

void SettingsView::addGrid() {
    beginSection();
    addToggle(tr("Show file name and exposure on thumbnails"), m_settings.gridShowsInfo(),
              [this](bool shows) { m_settings.setGridShowsInfo(shows); });
}

void SettingsView::addUsage() {
    beginSection();
    addToggle(tr("Share anonymous usage statistics"), m_settings.sharesAnonymousUsage(),
              [this](bool shares) { m_settings.setSharesAnonymousUsage(shares); });
    addNote(
        tr("Counts app launches and how many photos are copied or shared, with the app and macOS version. "
           "Never file names, folders or photos."));
}

void SettingsView::addSupport() {
    beginSection();
    auto* row = new QHBoxLayout;
    row->addWidget(
        makeLabel(TextRole::body, Tone::normal, this, tr("Kelvara is free. A donation helps it along.")), 1);
    auto* button = new QPushButton{tr("Support Kelvara…"), this};
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, &SettingsView::supportRequested);
    row->addWidget(button);
    m_column->addLayout(row);
}

void SettingsView::beginSection() {
    auto* line = new QFrame{this};
    line->setObjectName(QStringLiteral("hairline"));
    line->setFixedSize(contentWidth, 1);
    m_column->addSpacing(spacing::small);
    m_column->addWidget(line);
    m_column->addSpacing(spacing::small);
}

Picker* SettingsView::addPicker(const QString& label) {
    auto* picker = new Picker{this};
    picker->setMinimumWidth(190);
    auto* name = makeLabel(TextRole::body, Tone::normal, this, label);
    name->setBuddy(picker);
    auto* row = new QHBoxLayout;
    row->addWidget(name, 1);
    row->addWidget(picker);
    m_column->addLayout(row);
    return picker;
}

QCheckBox* SettingsView::addToggle(const QString& title, bool isOn, std::function<void(bool)> onChange) {
    auto* toggle = new QCheckBox{title, this};
    toggle->setChecked(isOn);
    connect(toggle, &QCheckBox::toggled, this, std::move(onChange));
    m_column->addWidget(toggle);
    return toggle;
}

void SettingsView::addNote(const QString& note) {
    auto* label = makeLabel(TextRole::caption, Tone::quiet, this, note);
    label->setWordWrap(true);
    label->setFixedWidth(contentWidth);
    m_column->addWidget(label);
}

} // namespace kelvara
