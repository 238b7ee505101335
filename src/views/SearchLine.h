#pragma once

#include <QLineEdit>

namespace kelvara {

/// A line to search with: a magnifying glass, and a button that clears it while there is text.
class SearchLine : public QLineEdit {
    Q_OBJECT

public:
    explicit SearchLine(const QString& placeholder, QWidget* parent = nullptr);
    /// Not as the user's typing.
    void showText(const QString& text);

signals:
    /// The user has typed or cleared.
    void searched(const QString& text);

private:
    QAction* m_clear;
};

} // namespace kelvara
