#pragma once

#include "views/Theme.h"

#include <QProxyStyle>

class QApplication;
class QWidget;

namespace kelvara {

/// What the style sheet can't say: check marks drawn with our symbols, calm tool tips, no motion where the
/// desktop asks for none.
class ApplicationStyle final : public QProxyStyle {
    Q_OBJECT

public:
    ApplicationStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
    QIcon standardIcon(StandardPixmap role, const QStyleOption* option, const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
};

/// Dresses the application, at start and whenever the desktop's appearance changes; open windows follow.
void applyTheme(QApplication& application, Theme::Appearance appearance);

/// Whether things may move on their own: false where the desktop asks for reduced motion.
[[nodiscard]] bool allowsMotion(const QWidget& widget);

/// The desktop's wish, as far as it is known; motion is allowed until then.
void setReducedMotion(bool reduced);

} // namespace kelvara
