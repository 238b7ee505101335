#pragma once

#include <QLabel>
#include <QStaticText>

namespace kelvara {

/// A few words on a picture, on a dark ground of their own. They break into lines where it is narrow and let
/// the pointer through to the picture.
class PresetCaption : public QLabel {
    Q_OBJECT

public:
    explicit PresetCaption(QWidget* parent = nullptr);
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QStaticText laidOut(int width) const;
};

} // namespace kelvara
