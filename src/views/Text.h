#pragma once

#include "model/FileURL.h"

#include <QLocale>
#include <QString>

#include <string>
#include <string_view>

namespace kelvara {

/// The core's texts are UTF-8; file names may be anything, and what isn't text becomes replacement
/// characters.
[[nodiscard]] inline QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
[[nodiscard]] inline std::string utf8(const QString& string) { return string.toStdString(); }
[[nodiscard]] inline QString nameText(const FileURL& url) { return text(url.name()); }
[[nodiscard]] inline QString pathText(const FileURL& url) { return text(url.path()); }

/// "12,345" in the user's way of writing numbers.
[[nodiscard]] inline QString countText(std::int64_t count) {
    return QLocale{}.toString(static_cast<qlonglong>(count));
}

/// `string` for a place where Qt would take "&" for a mnemonic.
[[nodiscard]] inline QString withoutMnemonics(QString string) {
    return string.replace(u'&', QStringLiteral("&&"));
}

} // namespace kelvara
