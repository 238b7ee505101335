#pragma once

#include "presets/Histogram.h"
#include "views/Clipping.h"

#include <QToolButton>

#include <optional>

namespace kelvara {

/// Tells whether an end of the histogram is clipped, in the colour of the channels that are, and when pressed
/// asks for the clipped areas to be shown.
class ClippingMark : public QToolButton {
    Q_OBJECT

public:
    ClippingMark(const QString& name, const QString& help, QWidget* parent);
    /// Fractions of the pixels whose red, green and blue are at the end.
    void show(double red, double green, double blue);
    using QWidget::show;
    [[nodiscard]] bool isLit() const { return m_color.isValid(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color; ///< Invalid while nothing is clipped.
};

/// A picture's histogram: red, green and blue as light adds up, over them the luminance as a line, and in the
/// corners the marks of clipping.
class HistogramView : public QWidget {
    Q_OBJECT

public:
    explicit HistogramView(QWidget* parent = nullptr);

    void show(const std::optional<Histogram>& histogram);
    using QWidget::show;
    /// What stands in place of a histogram; empty for nothing.
    void setHint(const QString& hint);
    /// What the marks ask for.
    [[nodiscard]] Clipping clipping() const;

signals:
    void clippingChosen();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintHint(QPainter& painter) const;
    void paintLevels(QPainter& painter) const;

    std::optional<Histogram> m_histogram;
    QString m_hint;
    ClippingMark* m_shadows;
    ClippingMark* m_highlights;
};

} // namespace kelvara
