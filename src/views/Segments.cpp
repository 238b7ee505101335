#include "views/Segments.h"

#include "views/Theme.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QToolButton>

namespace kelvara {

Segments::Segments(QWidget* parent)
    : QFrame{parent}, m_row{new QHBoxLayout{this}}, m_group{new QButtonGroup{this}} {
    setObjectName(QStringLiteral("segments"));
    m_row->setContentsMargins(1, 1, 1, 1);
    m_row->setSpacing(0);
}

void Segments::add(QToolButton* segment) {
    segment->setProperty("segment", true);
    segment->setCheckable(true);
    m_group->addButton(segment);
    m_row->addWidget(segment);
}

QToolButton* Segments::add(const QString& words) {
    auto* segment = new QToolButton{this};
    segment->setText(words);
    segment->setFont(kelvara::font(TextRole::body));
    segment->setFocusPolicy(Qt::TabFocus);
    segment->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    add(segment);
    return segment;
}

} // namespace kelvara
