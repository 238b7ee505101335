#include "views/CopyButton.h"

#include "views/Controls.h"
#include "views/CopyTexts.h"
#include "views/ExportTexts.h"
#include "views/ShareMenuItems.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QHBoxLayout>
#include <QMenu>

namespace kelvara {

namespace {
constexpr int longestTitle = 260; // logical pixels
} // namespace

CopyButton::CopyButton(LibraryViewModel& library, const ShareMenuItems& sharing, QWidget* parent)
    : QWidget{parent}, m_library{library}, m_sharing{sharing} {
    m_action = new QToolButton{this};
    m_action->setObjectName("copyAction");
    m_action->setFont(kelvara::font(TextRole::emphasis));
    m_action->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_action->setFocusPolicy(Qt::TabFocus);
    connect(m_action, &QToolButton::clicked, this, [this] { m_library.startCopy(); });

    m_menu = new QMenu{this};
    m_menu->setToolTipsVisible(true);
    connect(m_menu, &QMenu::aboutToShow, this, &CopyButton::fillMenu);
    m_menuButton = makeIconButton(u"chevron.down", tr("Copy Options"), tr("Copy Options"), this);
    m_menuButton->setObjectName("copyMenu");
    m_menuButton->setIconSize({12, 12});
    m_menuButton->setPopupMode(QToolButton::InstantPopup);
    m_menuButton->setMenu(m_menu);

    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(1);
    row->addWidget(m_action);
    row->addWidget(m_menuButton);

    using P = LibraryProperty;
    m_subscription =
        m_library.observe({P::checkedIDs, P::copyDestination}, [this](const auto&) { refresh(); });
    refresh();
}

void CopyButton::refresh() {
    const auto count = static_cast<std::int64_t>(m_library.checkedIDs().size());
    const auto texts = copyButtonTexts(count, m_library.copyDestination());
    m_action->setText(
        withoutMnemonics(m_action->fontMetrics().elidedText(texts.title, Qt::ElideMiddle, longestTitle)));
    m_action->setAccessibleName(texts.title);
    m_action->setToolTip(texts.help);
    m_action->setEnabled(count > 0);
    const auto ink = count > 0 ? &Theme::onAccent : &Theme::secondaryText;
    setSymbol(*m_action, symbolIcon(u"checkmark.circle.fill", ink), 16);
    m_menuButton->setIcon(symbolIcon(u"chevron.down", ink));
    setStyleProperty(*m_menuButton, "quiet", count == 0);
}

void CopyButton::fillMenu() {
    const auto count = static_cast<std::int64_t>(m_library.checkedIDs().size());
    m_menu->clear();
    m_menu
        ->addAction(tr("Copy %1 Marked Files").arg(countText(count)), this, [this] { m_library.startCopy(); })
        ->setEnabled(count > 0);
    auto* exporting = m_menu->addAction(exportTitle(m_library.checkedIDs().size()) + u'…', this,
                                        [this] { m_sharing.exportPhotos(m_library.markedItems()); });
    exporting->setToolTip(
        tr("JPEG, HEIF or PNG files in the size you choose, with the preset and each photo's edits applied"));
    exporting->setEnabled(count > 0);
    m_menu->addAction(tr("Change Destination…"), this, [this] { m_library.chooseCopyDestination(); });
    const auto addToggle = [this](const QString& title, bool isOn, auto set) {
        auto* toggle = m_menu->addAction(title, this, set);
        toggle->setCheckable(true);
        toggle->setChecked(isOn);
        return toggle;
    };
    addToggle(tr("Sort into Date Folders"), m_library.copiesIntoDateFolders(),
              [this](bool on) { m_library.setCopiesIntoDateFolders(on); });
    auto* verify = addToggle(tr("Verify Copies"), m_library.verifiesCopies(),
                             [this](bool on) { m_library.setVerifiesCopies(on); });
    verify->setToolTip(tr("Reads every copy back and compares it with the original; takes longer"));
    m_menu->addSeparator();
    m_menu->addAction(tr("Clear Marks"), this, [this] { m_library.clearMarks(); })->setEnabled(count > 0);
}

} // namespace kelvara
