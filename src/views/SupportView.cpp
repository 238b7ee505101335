#include "views/SupportView.h"

#include "views/Controls.h"
#include "views/Symbols.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace kelvara {

SupportView::SupportView(const QUrl& donationAddress, QWidget* mainWindow)
    : SideWindow{tr("Support Kelvara"), mainWindow} {
    constexpr int textWidth = 360;
    const auto hasAddress = donationAddress.isValid() && !donationAddress.isEmpty();
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(spacing::huge + 8, spacing::huge, spacing::huge + 8, spacing::huge);
    column->setSpacing(spacing::medium);
    column->setSizeConstraint(QLayout::SetFixedSize);

    auto* heart = new QToolButton{this}; // a button's icon follows the theme
    heart->setIcon(symbolIcon(u"heart", &Theme::danger));
    heart->setIconSize({48, 48});
    heart->setFocusPolicy(Qt::NoFocus);
    heart->setAttribute(Qt::WA_TransparentForMouseEvents);
    column->addWidget(heart, 0, Qt::AlignHCenter);
    column->addWidget(makeLabel(TextRole::title, Tone::normal, this, tr("Thank you for using Kelvara")), 0,
                      Qt::AlignHCenter);
    const auto say = [&](const QString& words) {
        auto* label = makeLabel(TextRole::body, Tone::quiet, this, words);
        label->setWordWrap(true);
        label->setFixedWidth(textWidth);
        label->setAlignment(Qt::AlignHCenter);
        column->addWidget(label);
    };
    say(tr(
        "Kelvara is free software, without accounts, without adverts, and with nothing held back for those "
        "who pay."));
    say(hasAddress
            ? tr("If it has saved you an evening in front of a full card, please consider a donation. It "
                 "helps to read new cameras, to mend what breaks, and to keep Kelvara free for everybody.")
            : tr("This build knows no address for donations. You help just as much by telling another "
                 "photographer about Kelvara, or by reporting the photo that it couldn't read."));

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::small);
    buttons->addStretch(1);
    auto* closing = new QPushButton{hasAddress ? tr("Not Now") : tr("Close"), this};
    closing->setMinimumWidth(96);
    connect(closing, &QPushButton::clicked, this, &SupportView::close);
    buttons->addWidget(closing);
    if (hasAddress) {
        auto* donate = new QPushButton{tr("Donate…"), this};
        donate->setMinimumWidth(96);
        donate->setDefault(true);
        setStyleProperty(*donate, "prominent", true);
        connect(donate, &QPushButton::clicked, this,
                [donationAddress] { QDesktopServices::openUrl(donationAddress); });
        buttons->addWidget(donate);
    }
    buttons->addStretch(1);
    column->addSpacing(spacing::small);
    column->addLayout(buttons);
}

} // namespace kelvara
