// How long presets take to be seen in the single image: `presets_bench FOLDER`, with photos of one size such
// as `kelvara-samplecard FOLDER --photos 12 --megapixels 24` makes.

#include "app/KelvaraApp.h"
#include "views/ApplicationStyle.h"
#include "views/LoupeView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

using namespace kelvara;

namespace {

constexpr int rounds = 60;

double milliseconds(const QElapsedTimer& clock) { return static_cast<double>(clock.nsecsElapsed()) / 1e6; }

void print(const std::string& title, std::vector<double> times) {
    std::ranges::sort(times);
    const auto at = [&](double share) {
        return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
    };
    std::printf("%-52s median %6.1f ms   99th percentile %6.1f ms   longest %6.1f ms   (%zu)\n",
                title.c_str(), at(0.5), at(0.99), times.back(), times.size());
    std::fflush(stdout);
}

template <typename Condition> void waitUntil(Condition&& condition) {
    while (!condition()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// From the key to the paint of the photo through the next preset, and to that in all the pixels that the
/// view shows; `first` and `sharp` take the times.
void measurePresets(KelvaraApp& app, LoupeView& loupe, const std::string& where) {
    std::vector<double> first;
    std::vector<double> sharp;
    for (int i = 0; i < rounds; ++i) {
        const auto before = loupe.preview().picture();
        QElapsedTimer clock;
        clock.start();
        app.presets().selectNext();
        waitUntil([&] { return loupe.preview().picture() != before || !app.presets().activePreset(); });
        loupe.repaint();
        first.push_back(milliseconds(clock));
        const auto width = loupe.preview().picture() ? loupe.preview().picture()->image().width() : 0;
        waitUntil([&] { return !loupe.isLoading(); });
        loupe.repaint();
        if (width > 0 && loupe.preview().picture()->image().width() > width)
            sharp.push_back(milliseconds(clock));
    }
    print("next preset, " + where, first);
    if (!sharp.empty()) print("    in full resolution", sharp);
}

/// The same for the next photo, and how often it was seen without the preset.
void measurePhotos(KelvaraApp& app, LoupeView& loupe) {
    std::vector<double> times;
    int plain = 0;
    const auto photos = std::min<std::size_t>(app.library().visibleItems().size(), 30);
    for (std::size_t i = 1; i < photos; ++i) {
        QElapsedTimer clock;
        clock.start();
        QTest::keyClick(&app.window(), Qt::Key_Right);
        waitUntil([&] { return loupe.imageView().image() != nullptr; });
        if (!loupe.preview().picture()) ++plain;
        waitUntil([&] { return loupe.preview().picture() != nullptr; });
        loupe.repaint();
        times.push_back(milliseconds(clock));
        waitUntil([&] { return !loupe.isLoading(); });
    }
    print("next photo through a preset", times);
    std::printf("    %d of %zu first without it\n", plain, times.size());
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    QApplication application{argumentCount, argumentValues};
    if (argumentCount < 2) return std::puts("presets_bench: give a folder of photos to measure"), 0;
    applyTheme(application, Theme::Appearance::dark);
    const QTemporaryDir settings;
    KelvaraApp app{{.folder = FileURL::standardized(argumentValues[1]),
                    .preferencesPath = settings.filePath(QStringLiteral("kelvara.conf")),
                    .countsUsage = false}};
    app.window().keepSize({1440, 900});
    app.window().show();
    waitUntil([&] { return !app.library().isScanning(); });
    auto& loupe = *app.window().findChild<LoupeView*>();
    app.library().toggleViewMode();
    waitUntil([&] { return loupe.isVisible() && !loupe.isLoading(); });

    measurePresets(app, loupe, "whole photo in 1440 x 900");
    app.library().requestZoom(ZoomRequest::Command::toggle);
    waitUntil([&] { return !loupe.isLoading(); });
    QTest::qWait(400);
    measurePresets(app, loupe, "at 100%");
    app.library().requestZoom(ZoomRequest::Command::fit);
    QTest::qWait(400);
    app.presets().select("builtin/warm-afternoon");
    waitUntil([&] { return !loupe.isLoading(); });
    measurePhotos(app, loupe);
}
