// How long a moved slider takes to be seen in the single image and in its histogram: `edits_bench FOLDER`,
// with a photo such as `kelvara-samplecard FOLDER --photos 1 --megapixels 24` makes.

#include "app/KelvaraApp.h"
#include "bench/Compare.h"
#include "views/ApplicationStyle.h"
#include "views/EditInspector.h"
#include "views/LightSlider.h"
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

using Slider = LightAdjustments::Slider;

void print(const std::string& title, std::vector<double> times) {
    std::ranges::sort(times);
    const auto at = [&](double share) {
        return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))] * 1000;
    };
    std::printf("%-56s median %6.1f ms   99th percentile %6.1f ms   longest %6.1f ms   (%zu)\n",
                title.c_str(), at(0.5), at(0.99), at(1), times.size());
    std::fflush(stdout);
}

template <typename Condition> void waitUntil(Condition&& condition) {
    while (!condition()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

double now() { return bench::now(bench::Clock::wall); }
/// Of all threads, which depends less on what else the machine does.
double work() { return bench::now(bench::Clock::processor); }

/// A click somewhere on the slider, as the mouse brings it.
void press(LightSlider& slider, int step) {
    const auto place = slider.width() * (20 + step * 37 % 60) / 100;
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {place, slider.height() / 2});
}

/// From one press to the paint of the photo and to the change of the histogram, at rest in between.
void measureSteps(LoupeView& loupe, LightSlider& slider, const EditInspector& inspector,
                  const std::string& where) {
    std::vector<double> event, frame, frameWork, histogram, histogramWork;
    for (int i = 0; i < 60; ++i) {
        waitUntil([&] { return !loupe.isLoading() && !inspector.isLoading(); });
        const auto before = loupe.imageView().image();
        const auto start = now();
        const auto startWork = work();
        press(slider, i);
        event.push_back(now() - start);
        waitUntil([&] { return loupe.imageView().image() != before; });
        loupe.repaint();
        frame.push_back(now() - start);
        frameWork.push_back(work() - startWork);
        waitUntil([&] { return !inspector.isLoading(); });
        histogram.push_back(now() - start);
        histogramWork.push_back(work() - startWork);
    }
    print("the event itself, " + where, event);
    print("from the event to the frame, " + where, frame);
    print("    processor time of all threads", frameWork);
    print("from the event to the histogram, " + where, histogram);
    print("    processor time of all threads", histogramWork);
}

/// A drag of 125 events a second: how often the photo is painted anew, and how far its picture is behind.
void measureDrag(LoupeView& loupe, LightSlider& slider, const std::string& where) {
    waitUntil([&] { return !loupe.isLoading(); });
    std::vector<double> gaps, late;
    auto shown = loupe.imageView().image();
    auto last = now();
    const auto y = slider.height() / 2;
    QTest::mousePress(&slider, Qt::LeftButton, {}, {slider.width() / 2, y});
    const auto start = last;
    for (int event = 0; event < 375; ++event) {
        const auto due = start + event * 0.008;
        while (now() < due) {
            QCoreApplication::processEvents();
            if (loupe.imageView().image() == shown) continue;
            shown = loupe.imageView().image();
            loupe.repaint();
            gaps.push_back(now() - std::exchange(last, now()));
        }
        late.push_back(now() - due);
        QTest::mouseMove(&slider, {slider.width() * (20 + (event * 2) % 60) / 100, y});
    }
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, {slider.width() / 3, y});
    print("between the frames of a drag, " + where, gaps);
    print("how late its events were handled, " + where, late);
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    QApplication application{argumentCount, argumentValues};
    if (argumentCount < 2) return std::puts("edits_bench: give a folder of photos to measure"), 0;
    applyTheme(application, Theme::Appearance::dark);
    const QTemporaryDir settings;
    KelvaraApp app{{.folder = FileURL::standardized(argumentValues[1]),
                    .preferencesPath = settings.filePath(QStringLiteral("kelvara.conf")),
                    .dataFolder = FileURL::standardized(settings.path().toStdString()),
                    .countsUsage = false}};
    app.window().keepSize({2620, 1700}); // so that the photo is shown in more than 2,048 pixels
    app.window().show();
    waitUntil([&] { return !app.library().isScanning(); });
    auto& loupe = *app.window().findChild<LoupeView*>();
    auto& slider = *app.window().findChild<LightSlider*>();
    auto& inspector = *app.window().findChild<EditInspector*>();
    app.library().toggleViewMode();
    app.library().toggleInspector(InspectorTab::edit);
    const auto settle = [&] {
        waitUntil([&] { return loupe.isVisible() && !loupe.isLoading(); });
        QTest::qWait(400);
    };
    settle();
    const auto measure = [&](const std::string& where) {
        measureSteps(loupe, slider, inspector, where);
        measureDrag(loupe, slider, where);
    };
    measure("edits alone");
    app.presets().select("builtin/warm-afternoon");
    settle();
    measure("with a preset");
    const auto size = loupe.preview().picture()->image().size();
    std::printf("drawn at rest in %d x %d\n", size.width(), size.height());
}
