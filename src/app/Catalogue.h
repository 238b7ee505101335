#pragma once

#include <QCoreApplication>

namespace kelvara {

/// The texts stand in the source in the words of the desktop they were first drawn for; this installs the
/// catalogue that puts them into the words of this one ("⌘F" becomes "Ctrl+F"), for views and core alike.
/// Once, at start. False when the catalogue is missing, and the texts stay as they are.
bool installPlatformCatalogue(QCoreApplication& application);

} // namespace kelvara
