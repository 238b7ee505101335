#include "views/DestinationButton.h"

#include "views/Controls.h"
#include "views/Symbols.h"
#include "views/Text.h"

namespace kelvara {

DestinationButton::DestinationButton(LibraryViewModel& library, int widestName, QWidget* parent)
    : QToolButton{parent}, m_library{library}, m_widestName{widestName} {
    setObjectName(QStringLiteral("destination"));
    setFont(kelvara::font(TextRole::body));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setSymbol(*this, symbolIcon(u"folder", &Theme::text), 16);
    connect(this, &QToolButton::clicked, this, [this] { m_library.chooseCopyDestination(); });
    m_subscription = library.observe({LibraryProperty::copyDestination}, [this](const auto&) { refresh(); });
    refresh();
}

void DestinationButton::refresh() {
    const auto& folder = m_library.copyDestination();
    const auto name = folder.isEmpty() ? tr("No folder chosen") : nameText(folder);
    setText(withoutMnemonics(fontMetrics().elidedText(name, Qt::ElideMiddle, m_widestName)));
    setAccessibleName(tr("Destination: %1").arg(name));
    setToolTip(folder.isEmpty() ? tr("Choose a folder") : pathText(folder));
}

} // namespace kelvara
