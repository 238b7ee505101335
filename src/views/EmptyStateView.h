#pragma once

#include "library/LibraryViewModel.h"
#include "views/BusyIndicator.h"
#include "views/Controls.h"
#include "views/EmptyState.h"

#include <QPushButton>

#include <optional>

namespace kelvara {

/// Says in the content area why there are no photos, and offers the way out.
class EmptyStateView : public Panel {
    Q_OBJECT

public:
    explicit EmptyStateView(LibraryViewModel& library, QWidget* parent = nullptr);

    /// Empty while there are photos to show.
    [[nodiscard]] std::optional<EmptyCause> cause() const { return m_cause; }

signals:
    void causeChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void refresh();
    void showText();
    void showSymbol();

    LibraryViewModel& m_library;
    std::optional<EmptyCause> m_cause;
    QString m_symbolName;
    QLabel* m_symbol;
    BusyIndicator* m_busy;
    QLabel* m_title;
    QLabel* m_description;
    QPushButton* m_button;
    QTimer m_patience;
    Subscription m_subscription;
};

} // namespace kelvara
