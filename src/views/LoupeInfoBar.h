#pragma once

#include "model/FileURL.h"
#include "model/Rating.h"
#include "views/Controls.h"
#include "views/ZoomGeometry.h"

#include <QString>

#include <optional>

namespace kelvara {

class BusyIndicator;

/// The line under the picture in the loupe: which photo it is, how it was judged, and how large it is shown.
class LoupeInfoBar : public Panel {
    Q_OBJECT

public:
    struct Content {
        FileURL url;
        std::size_t position = 0; ///< From 1.
        std::size_t total = 0;
        QString exposure; ///< One line; empty when unknown.
        bool isChecked = false;
        Rating rating;
        std::optional<ZoomState> zoom; ///< Empty while it is unknown and for what doesn't zoom.
        bool isLoadingFullResolution = false;
        QString preset{}; ///< The active preset's title and strength; empty for none.
        bool isEdited = false;
        friend bool operator==(const Content&, const Content&) = default;
    };

    explicit LoupeInfoBar(QWidget* parent = nullptr);
    void show(const Content& content);
    using QWidget::show;
    [[nodiscard]] QString zoomText() const { return m_zoom->text(); }
    [[nodiscard]] QString exposureText() const { return m_exposure->text(); }
    [[nodiscard]] QString positionText() const { return m_position->text(); }
    [[nodiscard]] QString presetText() const { return m_preset->text(); }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void refresh();
    void makeRoom();

    Content m_content;
    QLabel* m_position;
    ElidedLabel* m_name;
    QLabel* m_exposure;
    QLabel* m_mark;
    QLabel* m_stars;
    QLabel* m_edited;
    QLabel* m_presetSymbol;
    ElidedLabel* m_preset;
    BusyIndicator* m_busy;
    QLabel* m_loading;
    QLabel* m_help;
    QLabel* m_zoom;
};

} // namespace kelvara
