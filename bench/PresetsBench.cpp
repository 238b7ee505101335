// How long presets take to be seen in the single image: `presets_bench FOLDER`, with photos of one size such
// as `kelvara-samplecard FOLDER --photos 12 --megapixels 24` makes.

#include "app/KelvaraApp.h"
#include "bench/Compare.h"
#include "views/ApplicationStyle.h"
#include "views/LoupeView.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

using namespace kelvara;

namespace {

/// Time on the clock, and what all threads have worked meanwhile, which depends less on what else the machine
/// does.
struct Times {
    std::vector<double> wall;
    std::vector<double> work;
};
class Watch {
public:
    void addTo(Times& times) const {
        times.wall.push_back((bench::now(bench::Clock::wall) - m_wall) * 1000);
        times.work.push_back((bench::now(bench::Clock::processor) - m_work) * 1000);
    }

private:
    double m_wall = bench::now(bench::Clock::wall);
    double m_work = bench::now(bench::Clock::processor);
};

void printLine(const std::string& title, std::vector<double> times) {
    std::ranges::sort(times);
    const auto at = [&](double share) {
        return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
    };
    std::printf("%-52s median %6.1f ms   99th percentile %6.1f ms   longest %6.1f ms   (%zu)\n",
                title.c_str(), at(0.5), at(0.99), times.back(), times.size());
    std::fflush(stdout);
}

void print(const std::string& title, const Times& times) {
    if (times.wall.empty()) return;
    printLine(title, times.wall);
    printLine("    processor time of all threads", times.work);
}

template <typename Condition> void waitUntil(Condition&& condition) {
    while (!condition()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// From the key to the paint of the photo through the next preset, and to that in all the pixels that the
/// view shows; twice through the same presets.
void measurePresets(KelvaraApp& app, LoupeView& loupe, const std::string& where) {
    constexpr int count = 20;
    Times first;
    Times again;
    Times sharp;
    for (int i = 0; i < 2 * count; ++i) {
        if (i % count == 0) app.presets().select({});
        waitUntil([&] { return !loupe.isLoading(); });
        const auto before = loupe.preview().picture();
        const Watch watch;
        app.presets().selectNext();
        waitUntil([&] { return loupe.preview().picture() != before; });
        loupe.repaint();
        watch.addTo(i < count ? first : again);
        const auto width = loupe.preview().picture()->image().width();
        waitUntil([&] { return !loupe.isLoading(); });
        loupe.repaint();
        if (loupe.preview().picture()->image().width() > width) watch.addTo(sharp);
    }
    print("next preset, " + where + ", first time", first);
    print("next preset, " + where + ", seen before", again);
    print("next preset, " + where + ", in full resolution", sharp);
}

/// The same for the next photo, and how often it was seen without the preset.
void measurePhotos(KelvaraApp& app, LoupeView& loupe) {
    Times times;
    int plain = 0;
    const auto photos = std::min<std::size_t>(app.library().visibleItems().size(), 30);
    for (std::size_t i = 1; i < photos; ++i) {
        const Watch watch;
        app.library().moveFocus(MoveDirection::right);
        waitUntil([&] {
            return loupe.pictures().shown().url == app.library().focusedID() && loupe.imageView().image();
        });
        if (!loupe.preview().picture()) ++plain;
        waitUntil([&] { return loupe.preview().picture() != nullptr; });
        loupe.repaint();
        watch.addTo(times);
        waitUntil([&] { return !loupe.isLoading(); });
    }
    print("next photo through a preset", times);
    std::printf("    %d of %zu first without it\n", plain, times.wall.size());
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    QApplication application{argumentCount, argumentValues};
    if (argumentCount < 2) return std::puts("presets_bench: give a folder of photos to measure"), 0;
    applyTheme(application, Theme::Appearance::dark);
    const QTemporaryDir settings;
    KelvaraApp app{{.folder = FileURL::standardized(argumentValues[1]),
                    .preferencesPath = settings.filePath(QStringLiteral("kelvara.conf")),
                    .dataFolder = FileURL::standardized(settings.path().toStdString()),
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
