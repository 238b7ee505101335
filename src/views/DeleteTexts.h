#pragma once

#include "model/PhotoItem.h"

#include <QString>

#include <cstddef>
#include <optional>
#include <span>

namespace kelvara {

/// The words of the question before `items`, which are not none, are deleted.
struct DeleteTexts {
    QString title;
    QString message;
    QString button;
};
[[nodiscard]] DeleteTexts deleteTexts(std::span<const PhotoItem> items, bool permanently);

/// Offers to take the other files of the shots along: "… matching JPG/RAW with the same name (3 files)".
[[nodiscard]] QString pairedFilesText(std::span<const PhotoItem> paired);

/// Of `count` files that go, those that a filter hides; empty for none.
[[nodiscard]] QString hiddenText(std::size_t count, std::size_t hidden);

/// Of `count` files that go for good, those that were not copied.
[[nodiscard]] QString notCopiedText(std::size_t count, std::size_t notCopied);

} // namespace kelvara
