#include "views/DeleteTexts.h"

#include "views/Text.h"

#include <QCoreApplication>
#include <QStringList>

namespace kelvara {

namespace {

struct Deletion {
    Q_DECLARE_TR_FUNCTIONS(DeleteTexts)
};
QString tr(const char* source, int count = -1) { return Deletion::tr(source, nullptr, count); }

QString numberText(std::size_t number) { return countText(static_cast<std::int64_t>(number)); }

QString kindText(const PhotoItem& item) {
    return item.kind() == MediaKind::raw ? QStringLiteral("RAW") : text(item.url.extension()).toUpper();
}

} // namespace

DeleteTexts deleteTexts(std::span<const PhotoItem> items, bool permanently) {
    const auto message =
        permanently
            ? tr("This can’t be undone: files on a memory card are erased, not moved to the Trash, so "
                 "their space is freed at once.")
            : tr("The files are moved to the Trash, where they can be put back from Finder.");
    if (items.size() == 1) {
        const auto name = nameText(items[0].url);
        return {(permanently ? tr("Permanently delete “%1”?") : tr("Move “%1” to the Trash?")).arg(name),
                message, permanently ? tr("Delete") : tr("Move to Trash")};
    }
    const auto count = numberText(items.size());
    return {(permanently ? tr("Permanently delete %1 files?") : tr("Move %1 files to the Trash?")).arg(count),
            message, (permanently ? tr("Delete %1 Files") : tr("Move %1 Files to Trash")).arg(count)};
}

QString pairedFilesText(std::span<const PhotoItem> paired) {
    QStringList kinds;
    for (const auto& item : paired) kinds.append(kindText(item));
    kinds.removeDuplicates();
    kinds.sort();
    return tr("Also delete the matching %1 with the same name (%Ln files)", static_cast<int>(paired.size()))
        .arg(kinds.join(u'/'));
}

QString hiddenText(std::size_t count, std::size_t hidden) {
    if (hidden == 0) return {};
    if (hidden == count) return tr("A filter hides all of them at the moment.");
    if (hidden == 1) return tr("A filter hides one of them at the moment.");
    return tr("A filter hides %1 of them at the moment.").arg(numberText(hidden));
}

QString notCopiedText(std::size_t count, std::size_t notCopied) {
    if (count == 1) {
        return notCopied == 0 ? tr("It was copied in this session.")
                              : tr("It was not copied in this session.");
    }
    if (notCopied == 0) return tr("All of them were copied in this session.");
    if (notCopied == count) return tr("None of them was copied in this session.");
    if (notCopied == 1) return tr("One of them was not copied in this session.");
    return tr("%1 of them were not copied in this session.").arg(numberText(notCopied));
}

} // namespace kelvara
