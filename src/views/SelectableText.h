#pragma once

#include <QTextEdit>

namespace kelvara {

/// Text to read, select and copy, as high as it takes; long words break anywhere. It scrolls with what is
/// around it.
class SelectableText : public QTextEdit {
    Q_OBJECT

public:
    explicit SelectableText(QWidget* parent = nullptr);
    /// Nothing happens, not to a selection either, while the text is the same.
    void showText(const QString& text);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void fitHeight();
};

} // namespace kelvara
