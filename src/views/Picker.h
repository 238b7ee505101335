#pragma once

#include <QComboBox>

namespace kelvara {

/// A choice among a few, with a sign that there are more. The wheel scrolls what lies around it.
class Picker : public QComboBox {
    Q_OBJECT

public:
    explicit Picker(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace kelvara
