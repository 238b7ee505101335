#include "views/Sheet.h"

#include "views/Controls.h"
#include "views/SelectableText.h"
#include "views/Symbols.h"

#include <QBoxLayout>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

namespace kelvara {

namespace {

constexpr int padding = 24;
constexpr int shadowDepth = 14;

void collectFocusable(QWidget* root, QList<QWidget*>& widgets) {
    for (auto* child : root->findChildren<QWidget*>()) {
        if (child->isVisible() && child->isEnabled() && (child->focusPolicy() & Qt::TabFocus))
            widgets.append(child);
    }
}

} // namespace

Sheet::Sheet(QWidget* window) : QWidget{window} {
    hide();
    window->installEventFilter(this);
}

void Sheet::present(QWidget* content) {
    if (m_content && m_content != content) {
        m_content->hide();
        m_content->deleteLater();
    }
    const bool isNew = !isVisible();
    if (isNew) m_previousFocus = window()->focusWidget();
    m_content = content;
    setButtons(nullptr, nullptr);
    m_content->setParent(this);
    m_content->installEventFilter(this);
    m_content->show();
    place();
    show();
    if (isNew) raise();
    const auto sheets = visibleSheets();
    if (sheets.isEmpty() || sheets.back() == this) setFocus(Qt::OtherFocusReason);
}

void Sheet::dismiss() {
    if (!isVisible()) return;
    auto sheets = visibleSheets();
    const auto above = sheets.indexOf(this) + 1;
    hide();
    if (m_content) m_content->deleteLater();
    m_content = nullptr;
    // The one above took the keyboard from here, and gives it back in its turn.
    if (above < sheets.size()) {
        sheets[above]->m_previousFocus = m_previousFocus;
        return;
    }
    sheets.removeLast();
    // What had the keyboard in a sheet below may be gone.
    QWidget* next = m_previousFocus;
    if (!next && !sheets.isEmpty()) next = sheets.back();
    if (next) next->setFocus(Qt::OtherFocusReason);
}

QList<Sheet*> Sheet::visibleSheets() const {
    auto sheets = parentWidget()->findChildren<Sheet*>(QString{}, Qt::FindDirectChildrenOnly);
    sheets.removeIf([](const Sheet* sheet) { return !sheet->isVisible(); });
    return sheets; // in the order in which they are painted
}

void Sheet::setButtons(QPushButton* defaultButton, QPushButton* cancelButton) {
    m_default = defaultButton;
    m_cancel = cancelButton;
    if (!m_default) return;
    setStyleProperty(*m_default, "prominent", true);
}

QRect Sheet::panelRect() const {
    if (!m_content) return {};
    return m_content->geometry().adjusted(-padding, -padding, padding, padding);
}

void Sheet::place() {
    resize(parentWidget()->size());
    move(0, 0);
    if (!m_content) return;
    const auto room = size() - QSize{2 * padding + 2 * shadowDepth, 2 * padding + 2 * shadowDepth};
    auto wanted = m_content->sizeHint().expandedTo(m_content->minimumSize());
    if (m_content->hasHeightForWidth())
        wanted.setHeight(std::max(wanted.height(), m_content->heightForWidth(wanted.width())));
    const auto side = wanted.boundedTo(room);
    // Above the middle, like a sheet of paper on a desk.
    const auto top = std::max(padding + shadowDepth, (height() - side.height()) * 2 / 5);
    m_content->setGeometry((width() - side.width()) / 2, top, side.width(), side.height());
    update();
}

void Sheet::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor{0, 0, 0, theme.isDark() ? 0x8c : 0x50});
    painter.setPen(Qt::NoPen);
    auto shadow = theme.shadow;
    shadow.setAlpha(shadow.alpha() / shadowDepth);
    painter.setBrush(shadow);
    const QRectF panel{panelRect()};
    for (int grow = shadowDepth; grow > 0; --grow) {
        const auto edge = panel.adjusted(-grow, -grow + 4, grow, grow + 4);
        painter.drawRoundedRect(edge, radius::sheet + grow, radius::sheet + grow);
    }
    painter.setBrush(theme.window);
    painter.setPen(QPen{theme.border, 1});
    painter.drawRoundedRect(panel.adjusted(0.5, 0.5, -0.5, -0.5), radius::sheet, radius::sheet);
}

void Sheet::keyPressEvent(QKeyEvent* event) {
    const auto isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && m_default && m_default->isEnabled()) {
        auto* focused = qobject_cast<QPushButton*>(window()->focusWidget());
        auto* pressed = focused && isAncestorOf(focused) ? focused : m_default.data();
        pressed->click();
    } else if (event->key() == Qt::Key_Escape && m_cancel && m_cancel->isEnabled()) {
        m_cancel->click();
    }
    event->accept(); // nothing gets through to the window
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible()) place();
    if (watched == m_content && event->type() == QEvent::LayoutRequest) place();
    return QWidget::eventFilter(watched, event);
}

bool Sheet::focusNextPrevChild(bool next) {
    QList<QWidget*> widgets;
    collectFocusable(this, widgets);
    if (widgets.isEmpty()) return true;
    const auto current = widgets.indexOf(window()->focusWidget());
    const auto count = widgets.size();
    const auto following = current < 0 ? (next ? 0 : count - 1) : (current + (next ? 1 : count - 1)) % count;
    widgets[following]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

AlertView::AlertView(const QString& title, const QString& message, const QStringList& buttonTitles,
                     QWidget* parent)
    : QWidget{parent} {
    setAccessibleName(title);
    constexpr int textWidth = 320;
    auto* icon = new QLabel{this};
    icon->setPixmap(
        symbol(u"exclamationmark.triangle.fill", 36, Theme::current().warning, devicePixelRatioF()));
    // Breaks names that have no spaces, which a label cuts.
    const auto makeText = [this](TextRole role, const QString& words) {
        auto* text = new SelectableText{this};
        text->setFont(kelvara::font(role));
        text->setAccessibleName(words);
        text->setFixedWidth(textWidth);
        text->showText(words);
        return text;
    };
    auto* heading = makeText(TextRole::headline, title);
    auto* body = makeText(TextRole::body, message);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::small);
    buttons->addStretch(1);
    for (const auto& buttonTitle : buttonTitles.isEmpty() ? QStringList{tr("OK")} : buttonTitles) {
        m_buttons.append(new QPushButton{buttonTitle, this});
        m_buttons.back()->setMinimumWidth(84);
        buttons->addWidget(m_buttons.back());
    }

    auto* words = new QVBoxLayout;
    words->setSpacing(spacing::small - 2);
    words->addWidget(heading);
    words->addWidget(body);
    auto* top = new QHBoxLayout;
    top->setSpacing(spacing::large);
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(words);
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing::huge - 4);
    column->addLayout(top);
    column->addLayout(buttons);
}

} // namespace kelvara
