#pragma once

#include <QSlider>

namespace kelvara {

/// A horizontal slider that a double-click puts back to where it usually is.
class ResettingSlider : public QSlider {
    Q_OBJECT

public:
    explicit ResettingSlider(int usualValue, QWidget* parent = nullptr);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    int m_usualValue;
};

} // namespace kelvara
