#pragma once

#include "model/FileURL.h"

#include <QUrl>

namespace kelvara {

/// The URL of a local file. Byte for byte: a name that is no UTF-8 still names its file.
[[nodiscard]] inline QUrl toQUrl(const FileURL& file) {
    return QUrl::fromEncoded("file://" + QByteArray::fromStdString(file.path()).toPercentEncoding("/"));
}

/// The file of a URL for which isLocalFile() holds.
[[nodiscard]] inline FileURL fromQUrl(const QUrl& url) {
    const auto escaped = url.path(QUrl::FullyEncoded).toLatin1();
    return FileURL::standardized(QByteArray::fromPercentEncoding(escaped).toStdString());
}

} // namespace kelvara
