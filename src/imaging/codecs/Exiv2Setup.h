#pragma once

namespace kelvara {

/// Makes Exiv2 fit for several threads, quiet, and able to read the family of HEIF and CR3. To be called
/// before any other use of it, from any thread; what comes after the first call costs nothing.
void prepareExiv2();

} // namespace kelvara
