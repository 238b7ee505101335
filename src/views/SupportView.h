#pragma once

#include "views/SideWindow.h"

#include <QUrl>

namespace kelvara {

/// The window that asks for a donation.
class SupportView : public SideWindow {
    Q_OBJECT

public:
    /// Without an address there is no button that leads nowhere, but other ways to help.
    SupportView(const QUrl& donationAddress, QWidget* mainWindow);
};

} // namespace kelvara
