#include "imaging/codecs/Exiv2Setup.h"

#include <exiv2/exiv2.hpp>

#include <mutex>

namespace kelvara {
namespace {

/// The library's XMP parser has tables that all threads share, and asks for a lock around them.
void lockXmp(void*, bool isLocking) {
    static std::mutex mutex;
    if (isLocking)
        mutex.lock();
    else
        mutex.unlock();
}

} // namespace

void prepareExiv2() {
    static const bool isPrepared = [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute); // a broken file is no event here
        return Exiv2::XmpParser::initialize(lockXmp, nullptr) && Exiv2::enableBMFF(true);
    }();
    static_cast<void>(isPrepared);
}

} // namespace kelvara
