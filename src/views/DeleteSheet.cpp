#include "views/DeleteSheet.h"

#include "views/Controls.h"
#include "views/DeletePreviewStrip.h"
#include "views/DeleteTexts.h"
#include "views/SelectableText.h"
#include "views/SheetParts.h"
#include "views/Symbols.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QPushButton>

#include <algorithm>

namespace kelvara {

DeleteSheet::DeleteSheet(LibraryViewModel& library, const std::optional<ThumbnailSources>& thumbnails,
                         QWidget* parent)
    : QWidget{parent}, m_library{library} {
    const auto& items = *library.pendingDeletion();
    const auto words = deleteTexts(items, library.deletesPermanently());
    auto* column = SheetParts::makeColumn(this);
    column->addLayout(SheetParts::makeHeading(u"trash.fill", Theme::current().danger, words.title, this));
    column->addSpacing(spacing::medium);
    column->addWidget(SheetParts::makeParagraph(words.message, this));
    column->addSpacing(spacing::large);
    m_strip = new DeletePreviewStrip{items, thumbnails, this};
    column->addWidget(m_strip);

    if (const auto paired = library.pairedFiles(items); !paired.empty()) {
        m_paired = new QCheckBox{pairedFilesText(paired), this};
        m_paired->setChecked(library.deletesPairedFiles());
        m_paired->setFocusPolicy(Qt::TabFocus);
        connect(m_paired, &QCheckBox::toggled, this, [this](bool isOn) {
            m_library.setDeletesPairedFiles(isOn);
            refreshNote();
        });
        column->addSpacing(spacing::large);
        column->addWidget(m_paired);
    }
    column->addSpacing(spacing::medium);
    m_note = makeLabel(TextRole::body, Tone::normal, this); // a warning
    m_note->setWordWrap(true);
    column->addWidget(m_note);

    m_cancel = SheetParts::makeButton(tr("Cancel"), this);
    m_delete = SheetParts::makeButton(words.button, this);
    m_delete->setIcon(symbolIcon(u"trash.fill", &Theme::onAccent));
    setStyleProperty(*m_delete, "destructive", true);
    connect(m_cancel, &QPushButton::clicked, this, [this] { m_library.cancelDeletion(); });
    connect(m_delete, &QPushButton::clicked, this, [this] { m_library.confirmDeletion(); });
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::small);
    buttons->addStretch(1);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_delete);
    column->addSpacing(spacing::large);
    column->addLayout(buttons);
    refreshNote();
}

QPushButton* DeleteSheet::defaultButton() const {
    return m_library.deletesPermanently() ? m_cancel : m_delete;
}

bool DeleteSheet::isLoading() const { return m_strip->isLoading(); }

void DeleteSheet::refreshNote() {
    const auto targets = m_library.deletionTargets();
    const auto isHidden = [this](const PhotoItem& item) { return !m_library.visibleIndex(item.url); };
    const auto hidden = static_cast<std::size_t>(std::count_if(targets.begin(), targets.end(), isHidden));
    QStringList notes{hiddenText(targets.size(), hidden)};
    const auto notCopied = m_library.notCopiedCount(targets);
    if (notCopied && m_library.deletesPermanently()) notes.append(notCopiedText(targets.size(), *notCopied));
    notes.removeAll(QString{});
    m_note->setText(notes.join(u' '));
    m_note->setVisible(!notes.isEmpty());
}

} // namespace kelvara
