#pragma once

#include <QPointer>
#include <QWidget>

class QPushButton;

namespace kelvara {

/// Asks for attention inside its window: dims what lies below, holds the keyboard, and shows one panel.
/// Return presses the panel's default button, Esc its cancel button. Of several the one that came last lies
/// on top and has the keyboard, also while one below it changes or goes.
class Sheet : public QWidget {
    Q_OBJECT

public:
    /// Covers `window`, and follows its size.
    explicit Sheet(QWidget* window);

    /// Shows `content`, which the sheet owns from now on. A content shown before is deleted.
    void present(QWidget* content);
    /// Hides, and gives the keyboard back to whom it was taken from.
    void dismiss();
    [[nodiscard]] QWidget* content() const { return m_content; }

    /// The buttons of the keyboard; null for none. The default button takes the focus.
    void setButtons(QPushButton* defaultButton, QPushButton* cancelButton);

signals:
    void didShowOrHide();

protected:
    void showEvent(QShowEvent*) override { emit didShowOrHide(); }
    void hideEvent(QHideEvent*) override { emit didShowOrHide(); }
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent*) override {}
    void wheelEvent(QWheelEvent*) override {}
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void place();
    /// The sheets of the window that are in sight, the topmost last.
    [[nodiscard]] QList<Sheet*> visibleSheets() const;
    [[nodiscard]] QRect panelRect() const;

    QPointer<QWidget> m_content;
    QPointer<QWidget> m_previousFocus;
    QPointer<QPushButton> m_default;
    QPointer<QPushButton> m_cancel;
};

/// A sentence with a title and buttons, as content of a sheet.
class AlertView : public QWidget {
    Q_OBJECT

public:
    /// The default button comes last; without any there is "OK".
    AlertView(const QString& title, const QString& message, const QStringList& buttonTitles = {},
              QWidget* parent = nullptr);
    [[nodiscard]] QPushButton* defaultButton() const { return m_buttons.back(); }
    /// The one before the default button.
    [[nodiscard]] QPushButton* otherButton() const { return m_buttons.front(); }

private:
    QList<QPushButton*> m_buttons;
};

} // namespace kelvara
