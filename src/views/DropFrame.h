#pragma once

#include "model/FileURL.h"

#include <QWidget>

#include <vector>

class QMimeData;

namespace kelvara {

/// Shows that a widget takes what is dragged over it; lies over all of it while it is visible.
class DropFrame : public QWidget {
    Q_OBJECT

public:
    explicit DropFrame(QWidget* parent);
    void showOverParent();

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// The local paths that are dragged in; the file system is not asked.
[[nodiscard]] std::vector<FileURL> droppedPaths(const QMimeData& data);

} // namespace kelvara
