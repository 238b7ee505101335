#pragma once

#include "services/CopyService.h"

#include <QListView>

#include <vector>

namespace kelvara {

/// The files that were not copied, each with its reason. Takes thousands of them, and scrolls beyond a few.
class CopyFailureList : public QListView {
    Q_OBJECT

public:
    explicit CopyFailureList(const std::vector<CopyService::Report::Failure>& failures,
                             QWidget* parent = nullptr);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, sizeHint().height() / 2}; }
};

} // namespace kelvara
