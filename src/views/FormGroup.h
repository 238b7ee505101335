#pragma once

#include <QWidget>

class QGridLayout;

namespace kelvara {

class SelectableText;

/// Rows of labelled values in a box under a title.
class FormGroup : public QWidget {
    Q_OBJECT

public:
    explicit FormGroup(const QString& title, QWidget* parent = nullptr);

    /// A row of text that can be selected; returns the text.
    SelectableText* addText(const QString& label);
    void addRow(const QString& label, QWidget* value);
    /// What has the whole width of the box.
    void addWide(QWidget* widget);

private:
    QGridLayout* m_rows;
};

} // namespace kelvara
