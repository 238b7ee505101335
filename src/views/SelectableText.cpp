#include "views/SelectableText.h"

#include "views/Theme.h"

#include <QTextDocument>
#include <QWheelEvent>

#include <cmath>

namespace kelvara {

SelectableText::SelectableText(QWidget* parent) : QTextEdit{parent} {
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setFont(kelvara::font(TextRole::caption));
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setFocusPolicy(Qt::ClickFocus); // Tab leads to controls
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    connect(document(), &QTextDocument::contentsChanged, this, &SelectableText::fitHeight);
    fitHeight();
}

void SelectableText::showText(const QString& text) {
    if (toPlainText() != text) setPlainText(text);
}

QSize SelectableText::sizeHint() const { return {40, height()}; }
QSize SelectableText::minimumSizeHint() const { return {40, height()}; }

void SelectableText::resizeEvent(QResizeEvent* event) {
    QTextEdit::resizeEvent(event);
    fitHeight();
}

void SelectableText::wheelEvent(QWheelEvent* event) { event->ignore(); }

void SelectableText::fitHeight() {
    document()->setTextWidth(viewport()->width());
    const auto needed = static_cast<int>(std::ceil(document()->size().height()));
    setFixedHeight(std::max(needed, fontMetrics().height()));
}

} // namespace kelvara
