// From the start of the application to photos on the screen: `open_bench FOLDER`, with a card such as
// `kelvara-samplecard FOLDER --photos 2000 --megapixels 24` makes. Shows the real window on whatever platform
// Qt finds; the screen is asked what it shows.

#include "app/KelvaraApp.h"
#include "views/ApplicationStyle.h"
#include "views/PhotoGridView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <filesystem>

using namespace kelvara;

namespace {

/// How many pixels of the grid are coloured: the interface itself is grey, so these are photos.
int colouredPixels(QWidget& grid) {
    const auto shown = grid.grab().toImage().scaled(200, 125);
    int count = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            const auto pixel = shown.pixel(x, y);
            const auto [least, most] = std::minmax({qRed(pixel), qGreen(pixel), qBlue(pixel)});
            if (most - least > 24) ++count;
        }
    }
    return count;
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    QApplication application{argumentCount, argumentValues};
    if (argumentCount < 2) return std::puts("open_bench: give a folder of photos to measure"), 0;
    applyTheme(application, Theme::Appearance::dark);
    const QTemporaryDir settings;
    QElapsedTimer clock;
    clock.start();
    KelvaraApp app{
        {.folder = FileURL::standardized(argumentValues[1], std::filesystem::current_path().string()),
         .preferencesPath = settings.filePath(QStringLiteral("kelvara.conf")),
         .dataFolder = FileURL::standardized(settings.path().toStdString())}};
    app.window().resize(1440, 900);
    app.window().show();
    application.processEvents();
    const auto shown = clock.elapsed();
    std::printf("window shown %lld ms after the start\n", shown);

    auto* grid = app.window().findChild<PhotoGridView*>();
    constexpr int severalPhotos = 2500; // of 25,000 sampled pixels
    qint64 listed = 0;
    qint64 first = 0;
    qint64 longestBlock = 0;
    while (grid->isLoading() || app.library().isScanning()) {
        const auto before = clock.elapsed();
        application.processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
        longestBlock = std::max(longestBlock, clock.elapsed() - before);
        if (listed == 0 && !app.library().isScanning()) listed = clock.elapsed();
        if (first == 0 && listed != 0 && colouredPixels(*grid) > severalPhotos) first = clock.elapsed();
    }
    const auto all = clock.elapsed();
    std::printf("%zu files listed %lld ms after the window\n", app.library().items().size(), listed - shown);
    std::printf("first photos on screen %lld ms after the window\n", (first == 0 ? all : first) - shown);
    std::printf("every visible thumbnail final %lld ms after the window\n", all - shown);
    std::printf("longest round of the main loop %lld ms (up to 5 ms of it waiting)\n", longestBlock);
}
