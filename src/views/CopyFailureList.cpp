#include "views/CopyFailureList.h"

#include "views/Text.h"
#include "views/Theme.h"

#include <QAbstractListModel>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace kelvara {

namespace {

using FailedFile = CopyService::Report::Failure;

constexpr int mostRowsShown = 4;
enum Role { nameRole = Qt::UserRole, reasonRole };

class FailureModel : public QAbstractListModel {
public:
    FailureModel(std::vector<FailedFile> failures, QObject* parent)
        : QAbstractListModel{parent}, m_failures{std::move(failures)} {}
    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_failures.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        const auto& failure = m_failures[static_cast<std::size_t>(index.row())];
        const auto name = text(failure.fileName);
        const auto reason = text(failure.reason);
        switch (role) {
        case nameRole:
            return name;
        case reasonRole:
            return reason;
        case Qt::DisplayRole: // what is copied and read out
            return QString{name + QStringLiteral(": ") + reason};
        case Qt::ToolTipRole: // in lines, and never taken for markup
            return QString{QStringLiteral("<p><b>") + name.toHtmlEscaped() + QStringLiteral("</b><br>") +
                           reason.toHtmlEscaped() + QStringLiteral("</p>")};
        default:
            return {};
        }
    }

private:
    std::vector<FailedFile> m_failures;
};

/// The name over the reason, each on a line that is shortened where it has to be.
class FailureDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {0, m_name.height() + m_reason.height() + spacing::small + 1};
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto& theme = Theme::current();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (option.state & QStyle::State_Selected) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(theme.selection);
            painter->drawRoundedRect(option.rect, radius::control, radius::control);
        }
        auto line = option.rect.adjusted(spacing::small, spacing::tiny, -spacing::small, -spacing::tiny);
        const auto draw = [&](TextRole role, const QFontMetrics& metrics, const QColor& ink,
                              const QString& words, Qt::TextElideMode mode) {
            line.setHeight(metrics.height());
            painter->setFont(kelvara::font(role));
            painter->setPen(ink);
            painter->drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                              metrics.elidedText(words, mode, line.width()));
            line.moveTop(line.bottom() + 2);
        };
        draw(TextRole::emphasis, m_name, theme.text, index.data(nameRole).toString(), Qt::ElideMiddle);
        draw(TextRole::caption, m_reason, theme.secondaryText, index.data(reasonRole).toString(),
             Qt::ElideRight);
        painter->restore();
    }

private:
    QFontMetrics m_name{kelvara::font(TextRole::emphasis)};
    QFontMetrics m_reason{kelvara::font(TextRole::caption)};
};

} // namespace

CopyFailureList::CopyFailureList(const std::vector<FailedFile>& failures, QWidget* parent)
    : QListView{parent} {
    setObjectName("failures");
    setModel(new FailureModel{failures, this});
    setItemDelegate(new FailureDelegate{this});
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(tr("Files that failed"));
}

QSize CopyFailureList::sizeHint() const {
    const auto rows = std::min(model()->rowCount(), mostRowsShown);
    // Half a row more tells that there is something to scroll to.
    const auto halves = model()->rowCount() > mostRowsShown ? 2 * rows + 1 : 2 * rows;
    return {0, sizeHintForRow(0) * halves / 2 + 2 * frameWidth()};
}

} // namespace kelvara
