#pragma once

#include "library/SharingController.h"

#include <QTimer>
#include <QWidget>

class QLabel;

namespace kelvara {

/// Lies over the bottom of its parent while JPEGs are made for sharing: how many there are, and a way to
/// stop. What is done in a moment doesn't bring it up.
class ShareProgressView : public QWidget {
    Q_OBJECT

public:
    /// The controller outlives it.
    ShareProgressView(SharingController& sharing, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    void place();

    SharingController& m_sharing;
    QLabel* m_count;
    QTimer m_patience; // until it comes up
    Subscription m_subscription;
};

} // namespace kelvara
