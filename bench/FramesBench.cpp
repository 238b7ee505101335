// How long the frames take that a person sees: `frames_bench FOLDER`, with a card such as
// `kelvara-samplecard FOLDER --photos 300 --megapixels 24` makes. A frame at 60 a second has 16.7 ms.
// `frames_bench FOLDER edited`: the same with edits on every photo, hardly two alike.

#include "app/KelvaraApp.h"
#include "views/ApplicationStyle.h"
#include "views/ImagePyramid.h"
#include "views/LoupeView.h"
#include "views/PhotoGridView.h"
#include "views/ZoomableImageView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

using namespace kelvara;

namespace {

constexpr double frameMilliseconds = 1000.0 / 60;

double milliseconds(const QElapsedTimer& clock) { return static_cast<double>(clock.nsecsElapsed()) / 1e6; }

/// What the main thread has worked until now. Unlike the time on the clock it doesn't depend on what else
/// the machine does.
double workMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

void print(const std::string& title, std::vector<double> times) {
    std::ranges::sort(times);
    const auto at = [&](double share) {
        return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
    };
    std::printf("%-52s median %6.2f ms   99th percentile %6.2f ms   longest %6.2f ms   (%zu)\n",
                title.c_str(), at(0.5), at(0.99), times.back(), times.size());
    std::fflush(stdout);
}

/// Shows `count` frames at the pace of a screen, each what `draw` does and the events that came meanwhile,
/// and prints how long they took by the clock and in work of the main thread.
void measureFrames(const std::string& title, int count, const std::function<void(int frame)>& draw) {
    std::vector<double> times;
    std::vector<double> work;
    for (int frame = 0; frame < count; ++frame) {
        QElapsedTimer clock;
        clock.start();
        const auto before = workMilliseconds();
        draw(frame);
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        times.push_back(milliseconds(clock));
        work.push_back(workMilliseconds() - before);
        const auto rest = frameMilliseconds - milliseconds(clock);
        if (rest > 0) QThread::usleep(static_cast<unsigned long>(rest * 1000));
    }
    print(title, times);
    print("    of it the main thread's work", work);
}

/// Many names for the same photos.
void fill(const std::filesystem::path& folder, const std::filesystem::path& photos, int count) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator{photos}) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    if (files.empty()) return;
    for (int i = 0; i < count; ++i) {
        const auto& file = files[static_cast<std::size_t>(i) % files.size()];
        std::filesystem::create_hard_link(file, folder / (std::to_string(i) + file.extension().string()));
    }
}

void editAll(const std::filesystem::path& folder, int count) {
    std::ofstream json{folder / "Edits.json"};
    for (int i = 0; i < count; ++i) {
        json << (i == 0 ? "{" : ",") << '"' << FileURL{folder / (std::to_string(i) + ".xmp")}.uri()
             << R"(":{"exposure":)" << (i % 397 - 198) * 0.01 << R"(,"shadows":)" << i % 41 + 1 << '}';
    }
    json << '}';
}

void measureScrolling(PhotoGridView& grid) {
    auto* bar = grid.verticalScrollBar();
    const auto scroll = [&](int pixels) {
        return [bar, &grid, pixels](int frame) {
            bar->setValue((frame + 1) * pixels);
            grid.viewport()->repaint();
        };
    };
    measureFrames("scrolling, 40 px a frame, thumbnails arriving", 600, scroll(40));
    measureFrames("the same way again, thumbnails in memory", 600, scroll(40));
    measureFrames("scrolling, 400 px a frame", 600, scroll(400));
    measureFrames("jumping through all of it", 300, [&](int frame) {
        bar->setValue(static_cast<int>((static_cast<std::int64_t>(frame) * 7919) % (bar->maximum() + 1)));
        grid.viewport()->repaint();
    });
}

BitmapPtr syntheticPhoto(int width, int height) {
    auto image = Bitmap::create({width, height}, ColorProfile::sRGB());
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image->row(y).data());
        for (int x = 0; x < width; ++x) row[x] = qRgb((x * 7 + y) & 255, (x ^ y) & 255, (x + y * 3) & 255);
    }
    return image;
}

void measureZooming() {
    constexpr int width = 8660;
    constexpr int height = 5774;
    ZoomableImageView view;
    view.resize(2560, 1440);
    view.show();
    view.display(ImagePyramid::build(syntheticPhoto(width, height)), {width, height},
                 ZoomableImageView::SizeIs::known);
    QCoreApplication::processEvents();
    const auto wheel = [&](int delta) {
        QWheelEvent event{QPointF{900, 600},
                          view.mapToGlobal(QPointF{900, 600}),
                          {},
                          {0, delta},
                          Qt::NoButton,
                          Qt::ControlModifier,
                          Qt::NoScrollPhase,
                          false};
        QCoreApplication::sendEvent(&view, &event);
    };
    measureFrames("zooming into 50 megapixels, 2560 x 1440 points", 240, [&](int frame) {
        wheel(frame % 120 < 60 ? 12 : -12);
        view.repaint();
    });
    for (const bool isAtFull : {true, false}) {
        view.perform(ZoomRequest::Command::fit);
        QTest::qWait(400);
        view.perform(ZoomRequest::Command::toggle);
        if (!isAtFull) view.perform(ZoomRequest::Command::zoomOut);
        QTest::qWait(400);
        QTest::mousePress(&view, Qt::LeftButton, {}, {1280, 720});
        measureFrames(isAtFull ? "panning it at 100%" : "panning it below 100%", 240, [&](int frame) {
            const auto angle = frame * 0.1;
            QTest::mouseMove(&view, {1280 + static_cast<int>(600 * std::sin(angle)),
                                     720 + static_cast<int>(400 * std::sin(angle * 0.7))});
            view.repaint();
        });
        QTest::mouseRelease(&view, Qt::LeftButton, {}, {1280, 720});
    }
}

/// From the key to the paint that shows the next photo.
double nextPhoto(KelvaraApp& app, LoupeView& loupe) {
    QElapsedTimer clock;
    clock.start();
    QTest::keyClick(&app.window(), Qt::Key_Right);
    while (!loupe.imageView().image() || loupe.pictures().shown().url != app.library().focusedID())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    loupe.repaint();
    return milliseconds(clock);
}

void settle(const LoupeView& loupe) {
    while (loupe.isLoading()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QTest::qWait(1500); // the neighbours
}

void measureStepping(KelvaraApp& app) {
    auto& loupe = *app.window().findChild<LoupeView*>();
    app.library().setFocusedID(app.library().visibleItems()[1000].url);
    app.library().toggleViewMode();
    settle(loupe);
    std::vector<double> warm;
    for (int i = 0; i < 12; ++i) {
        warm.push_back(nextPhoto(app, loupe));
        settle(loupe);
    }
    print("key to the next photo, neighbours ready", warm);
    std::vector<double> cold;
    for (int i = 0; i < 12; ++i) {
        // Somewhere else entirely, straight after another jump.
        app.library().setFocusedID(
            app.library().visibleItems()[3000 + static_cast<std::size_t>(i) * 500].url);
        cold.push_back(nextPhoto(app, loupe));
    }
    print("key to the next photo, nothing ready", cold);
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    QApplication application{argumentCount, argumentValues};
    if (argumentCount < 2) return std::puts("frames_bench: give a folder of photos to measure"), 0;
    applyTheme(application, Theme::Appearance::dark);
    constexpr int photos = 20'000;
    const auto source = std::filesystem::absolute(argumentValues[1]);
    // Links do not cross volumes.
    const QTemporaryDir folder{QString::fromStdString((source.parent_path() / "frames-XXXXXX").string())};
    fill(folder.path().toStdString(), source, photos);
    if (argumentCount > 2 && std::string_view{argumentValues[2]} == "edited")
        editAll(folder.path().toStdString(), photos);

    KelvaraApp app{{.folder = FileURL::standardized(folder.path().toStdString()),
                    .preferencesPath = folder.filePath(QStringLiteral("kelvara.conf")),
                    .dataFolder = FileURL::standardized(folder.path().toStdString())}};
    app.window().keepSize({1440, 900});
    app.window().show();
    auto& grid = *app.window().findChild<PhotoGridView*>();
    while (app.library().isScanning() || grid.isLoading())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::printf("%zu photos on platform %s\n", app.library().items().size(),
                qPrintable(QGuiApplication::platformName()));
    measureScrolling(grid);
    measureStepping(app);
    measureZooming();
}
