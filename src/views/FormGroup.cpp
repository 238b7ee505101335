#include "views/FormGroup.h"

#include "views/Controls.h"
#include "views/SelectableText.h"

#include <QGridLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace kelvara {

namespace {

constexpr int labelWidth = 86;

class Box : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter{this};
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::current().window);
        painter.drawRoundedRect(rect(), radius::popover, radius::popover);
    }
};

} // namespace

FormGroup::FormGroup(const QString& title, QWidget* parent) : QWidget{parent} {
    setAccessibleName(title);
    auto* heading = makeLabel(TextRole::section, Tone::quiet, this, title);
    heading->setIndent(spacing::small + 2);
    auto* box = new Box{this};
    m_rows = new QGridLayout{box};
    m_rows->setContentsMargins(spacing::small + 2, spacing::small, spacing::small + 2, spacing::small);
    m_rows->setHorizontalSpacing(spacing::small);
    m_rows->setVerticalSpacing(6);
    m_rows->setColumnMinimumWidth(0, labelWidth);
    m_rows->setColumnStretch(1, 1);
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->setSpacing(5);
    column->addWidget(heading);
    column->addWidget(box);
}

SelectableText* FormGroup::addText(const QString& label) {
    auto* value = new SelectableText{this};
    value->setAccessibleName(label);
    addRow(label, value);
    return value;
}

void FormGroup::addRow(const QString& label, QWidget* value) {
    const auto row = m_rows->rowCount();
    m_rows->addWidget(makeLabel(TextRole::caption, Tone::quiet, this, label), row, 0, Qt::AlignTop);
    m_rows->addWidget(value, row, 1, Qt::AlignTop);
}

void FormGroup::addWide(QWidget* widget) { m_rows->addWidget(widget, m_rows->rowCount(), 0, 1, 2); }

} // namespace kelvara
