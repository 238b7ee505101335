#pragma once

#include <QFrame>

class QButtonGroup;
class QHBoxLayout;
class QToolButton;

namespace kelvara {

/// A choice among a few that are all in sight. Tab reaches the chosen one, the arrows the others.
class Segments : public QFrame {
    Q_OBJECT

public:
    explicit Segments(QWidget* parent = nullptr);

    /// The button becomes the last segment.
    void add(QToolButton* segment);
    /// Adds a segment of words that shares the width with the others.
    QToolButton* add(const QString& words);

private:
    QHBoxLayout* m_row;
    QButtonGroup* m_group;
};

} // namespace kelvara
