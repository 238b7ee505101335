#include "views/SidebarFooter.h"

#include "views/Controls.h"
#include "views/Symbols.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kelvara {

SidebarFooter::SidebarFooter(QWidget* parent) : QWidget{parent} {
    auto* open = makeIconButton(u"folder.badge.plus", tr("Choose Folder…"),
                                tr("Choose a folder to look through"), this);
    open->setText(tr("Choose Folder…"));
    open->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    open->setFont(kelvara::font(TextRole::caption));
    setSymbol(*open, symbolIcon(u"folder.badge.plus", &Theme::text), 16);
    connect(open, &QToolButton::clicked, this, &SidebarFooter::folderRequested);

    auto* version = new ElidedLabel{this, Qt::ElideRight};
    dress(*version, TextRole::caption, Tone::quiet);
    version->setText(tr("Version %1").arg(QCoreApplication::applicationVersion()));
    version->setContentsMargins(spacing::tiny + 1, 0, 0, 0);

    auto* support = makeIconButton(u"heart", tr("Support Kelvara"), tr("Support Kelvara"), this);
    support->setIcon(symbolIcon(u"heart", &Theme::secondaryText));
    support->setIconSize({15, 15});
    connect(support, &QToolButton::clicked, this, &SidebarFooter::supportRequested);

    auto* about = new QHBoxLayout;
    about->addWidget(version, 1);
    about->addWidget(support);
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(spacing::small, spacing::tiny, spacing::small, spacing::tiny);
    column->setSpacing(0);
    column->addWidget(open, 0, Qt::AlignLeft);
    column->addLayout(about);
}

} // namespace kelvara
