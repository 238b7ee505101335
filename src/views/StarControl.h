#pragma once

#include "model/Rating.h"

#include <QWidget>

namespace kelvara {

/// Five stars to click: the chosen one and those before it are filled; a click on the last filled one takes
/// the rating away.
class StarControl : public QWidget {
    Q_OBJECT

public:
    explicit StarControl(QWidget* parent = nullptr);

    void setRating(Rating rating);
    [[nodiscard]] Rating rating() const { return m_rating; }
    [[nodiscard]] QSize sizeHint() const override;

signals:
    void chosen(Rating rating);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    [[nodiscard]] int starAt(const QPointF& point) const;
    void setHovered(int star);

    Rating m_rating;
    int m_hovered = 0; ///< 1 to 5; 0 for none.
};

} // namespace kelvara
