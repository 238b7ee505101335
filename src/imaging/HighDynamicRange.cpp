#include "imaging/HighDynamicRange.h"

#include <algorithm>
#include <cmath>

namespace kelvara::HighDynamicRange {
namespace {

// ITU-R BT.2408: diffuse white, which a screen's own white stands for, and the brightest highlights of graded
// pictures. In cd/m2.
constexpr double diffuseWhite = 203;
constexpr double brightest = 1000;
constexpr double mostPQ = 10'000;

// SMPTE ST 2084.
constexpr double m1 = 2610.0 / 16384, m2 = 2523.0 / 4096 * 128;
constexpr double c1 = 3424.0 / 4096, c2 = 2413.0 / 4096 * 32, c3 = 2392.0 / 4096 * 32;

double lightOfPQ(double signal) {
    const double power = std::pow(signal, 1 / m2);
    return mostPQ * std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1 / m1);
}

double signalOfPQ(double light) {
    const double power = std::pow(light / mostPQ, m1);
    return std::pow((c1 + c2 * power) / (1 + c3 * power), m2);
}

/// The mapping to smaller displays of ITU-R BT.2390 (its EETF) on a PQ signal: as it is up to a knee, then a
/// Hermite spline that takes `brightest` to `diffuseWhite`.
double mappedSignal(double signal) {
    const double top = signalOfPQ(brightest);
    const double target = signalOfPQ(diffuseWhite) / top;
    const double knee = 1.5 * target - 0.5;
    const double given = std::min(signal / top, 1.0);
    if (given <= knee) return signal;
    const double t = (given - knee) / (1 - knee);
    const double t2 = t * t, t3 = t2 * t;
    const double mapped =
        (2 * t3 - 3 * t2 + 1) * knee + (t3 - 2 * t2 + t) * (1 - knee) + (3 * t2 - 2 * t3) * target;
    return mapped * top;
}

} // namespace

double screenLightOfPQ(double signal) {
    return std::clamp(lightOfPQ(mappedSignal(signal)) / diffuseWhite, 0.0, 1.0);
}

double screenLightOfHLG(double signal) {
    // ITU-R BT.2100, table 5: the inverse of the camera's curve, then the monitor's system gamma. That one is
    // meant for luminance; on each colour alone it makes strong colours a little stronger.
    constexpr double a = 0.17883277, b = 1 - 4 * a, c = 0.55991073, systemGamma = 1.2;
    const double scene = signal <= 0.5 ? signal * signal / 3 : (std::exp((signal - c) / a) + b) / 12;
    return screenLightOfPQ(signalOfPQ(brightest * std::pow(scene, systemGamma)));
}

} // namespace kelvara::HighDynamicRange
