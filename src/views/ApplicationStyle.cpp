#include "views/ApplicationStyle.h"

#include "views/Symbols.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QPainter>
#include <QRegularExpression>
#include <QStyleOption>
#include <QWidget>

#include <algorithm>
#include <memory>

// A static library's resources are registered by hand. Outside the namespace, as the macro demands.
static void registerStyle() { Q_INIT_RESOURCE(style); }

namespace kelvara {

namespace {

bool reducedMotion = false;

QPalette makePalette(const Theme& theme) {
    QPalette palette;
    palette.setColor(QPalette::Window, theme.window);
    palette.setColor(QPalette::WindowText, theme.text);
    palette.setColor(QPalette::Base, theme.isDark() ? theme.field : theme.popover);
    palette.setColor(QPalette::AlternateBase, theme.panel);
    palette.setColor(QPalette::Text, theme.text);
    palette.setColor(QPalette::PlaceholderText, theme.secondaryText);
    palette.setColor(QPalette::Button, theme.raised);
    palette.setColor(QPalette::ButtonText, theme.text);
    palette.setColor(QPalette::BrightText, theme.onAccent);
    palette.setColor(QPalette::Highlight, theme.accentFill);
    palette.setColor(QPalette::HighlightedText, theme.onAccent);
    palette.setColor(QPalette::ToolTipBase, theme.popover);
    palette.setColor(QPalette::ToolTipText, theme.text);
    palette.setColor(QPalette::Link, theme.accent);
    palette.setColor(QPalette::Light, theme.raisedHover);
    palette.setColor(QPalette::Midlight, theme.raised);
    palette.setColor(QPalette::Mid, theme.border);
    palette.setColor(QPalette::Dark, theme.separator);
    palette.setColor(QPalette::Shadow, theme.separator);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, theme.tertiaryText);
    }
    return palette;
}

QColor withAlpha(QColor color, int alpha) {
    color.setAlpha(alpha);
    return color;
}

QHash<QString, QColor> tokens(const Theme& theme) {
    const auto dark = theme.isDark();
    return {
        {QStringLiteral("menuBar"), theme.panel},
        {QStringLiteral("popover"), theme.popover},
        {QStringLiteral("text"), theme.text},
        {QStringLiteral("secondaryText"), theme.secondaryText},
        {QStringLiteral("tertiaryText"), theme.tertiaryText},
        {QStringLiteral("raised"), theme.raised},
        {QStringLiteral("raisedHover"), theme.raisedHover},
        {QStringLiteral("raisedPress"), theme.raisedPress},
        {QStringLiteral("field"), theme.field},
        {QStringLiteral("selection"), theme.selection},
        {QStringLiteral("separator"), theme.separator},
        {QStringLiteral("border"), theme.border},
        {QStringLiteral("accentFill"), theme.accentFill},
        {QStringLiteral("accentHover"), theme.accentHover},
        {QStringLiteral("dangerFill"), theme.dangerFill},
        {QStringLiteral("dangerHover"), theme.dangerHover},
        {QStringLiteral("onAccent"), theme.onAccent},
        {QStringLiteral("focusRing"), theme.focusRing},
        {QStringLiteral("hover"), withAlpha(theme.text, dark ? 0x18 : 0x12)},
        {QStringLiteral("hairline"), withAlpha(theme.text, 0x20)},
        {QStringLiteral("scrollHandle"), withAlpha(theme.text, 0x48)},
        {QStringLiteral("scrollHandleHover"), withAlpha(theme.text, 0x80)},
        {QStringLiteral("track"), withAlpha(theme.text, dark ? 0x26 : 0x22)},
        {QStringLiteral("handle"), dark ? theme.text : theme.popover},
        {QStringLiteral("handleEdge"), dark ? withAlpha(theme.separator, 0x80) : theme.border},
        {QStringLiteral("segment"), dark ? theme.selection : theme.popover},
    };
}

QString styleSheet(const Theme& theme) {
    static const bool isRegistered = (registerStyle(), true);
    Q_UNUSED(isRegistered)
    QFile file{QStringLiteral(":/style.qss")};
    if (!file.open(QIODevice::ReadOnly)) return {};
    const auto source = QString::fromUtf8(file.readAll());
    const auto colors = tokens(theme);
    static const QRegularExpression token{QStringLiteral("@([a-zA-Z]+)")};
    QString result;
    qsizetype copied = 0;
    for (auto matches = token.globalMatch(source); matches.hasNext();) {
        const auto match = matches.next();
        const auto color = colors.value(match.captured(1));
        Q_ASSERT_X(color.isValid(), "style.qss", qPrintable(match.captured(0)));
        result += QStringView{source}.mid(copied, match.capturedStart() - copied);
        result += QStringLiteral("rgba(%1,%2,%3,%4)")
                      .arg(color.red())
                      .arg(color.green())
                      .arg(color.blue())
                      .arg(color.alpha());
        copied = match.capturedEnd();
    }
    result += QStringView{source}.mid(copied);
    return result;
}

void drawCheckBox(const QStyleOption& option, QPainter& painter) {
    const auto& theme = Theme::current();
    const bool isOn = option.state & QStyle::State_On;
    const bool isEnabled = option.state & QStyle::State_Enabled;
    const bool hasFocus = option.state & QStyle::State_HasFocus;
    const QRectF box = QRectF{option.rect}.adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen{hasFocus ? theme.focusRing
                        : isOn   ? theme.accentFill
                                 : theme.border,
                        hasFocus ? 2.0 : 1.0});
    painter.setBrush(!isEnabled ? theme.panel : isOn ? theme.accentFill : theme.field);
    painter.drawRoundedRect(box, 4, 4);
    if (isOn) {
        const auto side = option.rect.width() - 2;
        const auto ratio = painter.device()->devicePixelRatio();
        painter.drawPixmap(
            option.rect.topLeft() + QPoint{1, 1},
            symbol(u"checkmark", side, isEnabled ? theme.onAccent : theme.tertiaryText, ratio));
    }
    painter.restore();
}

void drawMenuSign(QStringView name, const QStyleOption& option, QPainter& painter) {
    const auto& theme = Theme::current();
    const auto& color = !(option.state & QStyle::State_Enabled) ? theme.tertiaryText
                        : option.state & QStyle::State_Selected ? theme.onAccent
                                                                : theme.text;
    const auto side = std::clamp(std::min(option.rect.width(), option.rect.height()), 12, 14);
    QRect place{0, 0, side, side};
    place.moveCenter(option.rect.center());
    painter.drawPixmap(place, symbol(name, side, color, painter.device()->devicePixelRatio()));
}

} // namespace

ApplicationStyle::ApplicationStyle() : QProxyStyle{QStringLiteral("Fusion")} {}

void ApplicationStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                     const QWidget* widget) const {
    if (element == PE_IndicatorCheckBox) return drawCheckBox(*option, *painter);
    // They have rings of their own.
    if (element == PE_FrameFocusRect && qobject_cast<const QAbstractButton*>(widget)) return;
    if (element == PE_IndicatorMenuCheckMark) {
        if (option->state & State_On) drawMenuSign(u"checkmark", *option, *painter);
        return;
    }
    if (element == PE_IndicatorArrowRight && qobject_cast<const QMenu*>(widget))
        return drawMenuSign(u"chevron.right", *option, *painter);
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

int ApplicationStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* data) const {
    switch (hint) {
    case SH_ToolTip_WakeUpDelay:
        return 600;
    case SH_Widget_Animation_Duration:
        if (reducedMotion) return 0;
        break;
    case SH_MenuBar_AltKeyNavigation: // Alt with the wheel zooms; letting it go afterwards must open nothing
    case SH_UnderlineShortcut:
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_EtchDisabledText:
        return 0;
    default:
        break;
    }
    return QProxyStyle::styleHint(hint, option, widget, data);
}

int ApplicationStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const {
    if (metric == PM_IndicatorWidth || metric == PM_IndicatorHeight) return 16;
    if (metric == PM_SmallIconSize) return 16;
    return QProxyStyle::pixelMetric(metric, option, widget);
}

QIcon ApplicationStyle::standardIcon(StandardPixmap role, const QStyleOption* option,
                                     const QWidget* widget) const {
    switch (role) {
    case SP_ArrowBack:
    case SP_ArrowLeft:
        return symbolIcon(u"chevron.left", &Theme::text);
    case SP_ArrowForward:
    case SP_ArrowRight:
        return symbolIcon(u"chevron.right", &Theme::text);
    case SP_FileDialogToParent:
        return symbolIcon(u"arrow.up", &Theme::text);
    case SP_FileDialogNewFolder:
        return symbolIcon(u"folder.badge.plus", &Theme::text);
    case SP_FileDialogListView:
        return symbolIcon(u"square.grid.3x3", &Theme::text);
    case SP_FileDialogDetailedView:
        return symbolIcon(u"line.3.horizontal", &Theme::text);
    case SP_DirIcon:
    case SP_DirOpenIcon:
    case SP_DirClosedIcon:
    case SP_DirHomeIcon:
    case SP_DirLinkIcon:
        return symbolIcon(u"folder", &Theme::secondaryText);
    case SP_ComputerIcon:
    case SP_DesktopIcon:
    case SP_DriveHDIcon:
        return symbolIcon(u"internaldrive", &Theme::secondaryText);
    case SP_FileIcon:
        return symbolIcon(u"doc", &Theme::secondaryText);
    default:
        return QProxyStyle::standardIcon(role, option, widget);
    }
}

void applyTheme(QApplication& application, Theme::Appearance appearance) {
    const auto body = font(TextRole::body); // looked up before it replaces the desktop's own
    Theme::setCurrent(appearance);
    const auto& theme = Theme::current();
    application.setStyle(new ApplicationStyle);
    application.setPalette(makePalette(theme));
    application.setFont(body);
    application.setStyleSheet(styleSheet(theme));
}

bool allowsMotion(const QWidget& widget) {
    return widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) > 0;
}

void setReducedMotion(bool reduced) { reducedMotion = reduced; }

} // namespace kelvara
