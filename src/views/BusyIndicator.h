#pragma once

#include <QTimer>
#include <QWidget>

namespace kelvara {

/// Shows that something goes on for as long as it is visible: a turning arc, or three still dots where the
/// desktop asks for reduced motion.
class BusyIndicator : public QWidget {
    Q_OBJECT

public:
    explicit BusyIndicator(int side, QWidget* parent = nullptr);
    [[nodiscard]] QSize sizeHint() const override { return {m_side, m_side}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    int m_side;
    int m_angle = 0; // degrees
    QTimer m_timer;
};

} // namespace kelvara
