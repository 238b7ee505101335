#include "app/ApplicationIcon.h"
#include "app/Catalogue.h"
#include "app/DesktopAppearance.h"
#include "app/KelvaraApp.h"
#include "app/Screenshots.h"
#include "app/WatchedApplication.h"
#include "platform/linux/TerminationWatch.h"
#include "views/ApplicationStyle.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>

namespace {

using kelvara::Theme;

struct Arguments {
    kelvara::FileURL folder;
    QString screenshotFolder;
    QStringList screenshotNames; ///< Empty for all.
    std::optional<Theme::Appearance> appearance;
    std::optional<QSize> size;
};

[[noreturn]] void refuse(const QString& reason) {
    std::fprintf(stderr, "kelvara: %s\nTry kelvara --help.\n", qPrintable(reason));
    std::exit(2);
}

std::optional<QSize> parsedSize(const QString& text) {
    const auto parts = text.split(u'x');
    if (parts.size() != 2) return std::nullopt;
    const QSize size{parts[0].toInt(), parts[1].toInt()};
    return size.isEmpty() ? std::nullopt : std::optional{size};
}

/// The argument as it was given: what is no UTF-8 in it is lost in `argument`.
std::string bytes(const QString& argument, std::span<char* const> values) {
    const auto isIt = [&](const char* value) { return QString::fromLocal8Bit(value) == argument; };
    const auto found = std::ranges::find_if(values, isIt);
    return found == values.end() ? argument.toStdString() : *found;
}

Arguments parse(const QCoreApplication& application, std::span<char* const> values) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Goes through a memory card's photos, marks the keepers and copies them safely."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption screenshots{
        QStringLiteral("screenshots"), QStringLiteral("Write pictures of the windows to <folder> and quit."),
        QStringLiteral("folder")};
    const QCommandLineOption states{QStringLiteral("states"),
                                    QStringLiteral("Of which states: %1. All where none are named.")
                                        .arg(kelvara::Screenshots::names().join(QStringLiteral(","))),
                                    QStringLiteral("state,...")};
    const QCommandLineOption theme{QStringLiteral("theme"), QStringLiteral("Look: dark or light."),
                                   QStringLiteral("dark|light")};
    const QCommandLineOption size{QStringLiteral("size"), QStringLiteral("Size of the window in points."),
                                  QStringLiteral("WxH")};
    parser.addOptions({screenshots, states, theme, size});
    parser.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("The folder or card to open."),
                                 QStringLiteral("[folder]"));
    parser.process(application);

    Arguments arguments;
    const auto folders = parser.positionalArguments();
    if (folders.size() > 1) refuse(QStringLiteral("only one folder can be opened."));
    if (!folders.isEmpty()) {
        std::error_code noFolder;
        arguments.folder = kelvara::FileURL::standardized(bytes(folders.first(), values),
                                                          std::filesystem::current_path(noFolder).native());
    }
    arguments.screenshotFolder = parser.value(screenshots);
    arguments.screenshotNames = parser.value(states).split(u',', Qt::SkipEmptyParts);
    for (const auto& name : arguments.screenshotNames) {
        if (!kelvara::Screenshots::names().contains(name))
            refuse(QStringLiteral("there is no state \"%1\" to show.").arg(name));
    }
    if (parser.isSet(screenshots) && arguments.folder.isEmpty()) {
        refuse(QStringLiteral("--screenshots needs a folder of photos to show."));
    }
    if (parser.isSet(theme)) {
        const auto name = parser.value(theme);
        if (name != u"dark" && name != u"light") refuse(QStringLiteral("--theme is dark or light."));
        arguments.appearance = name == u"light" ? Theme::Appearance::light : Theme::Appearance::dark;
    }
    if (parser.isSet(size)) {
        arguments.size = parsedSize(parser.value(size));
        if (!arguments.size) refuse(QStringLiteral("--size is width x height, such as 1280x800."));
    }
    return arguments;
}

QString preferencesPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/kelvara/kelvara.conf");
}

/// Where the application keeps what is the user's: presets and edits.
kelvara::FileURL dataFolder(const QString& data) {
    return kelvara::FileURL::standardized(QFile::encodeName(data).toStdString()).child("kelvara");
}

constexpr std::string_view appearanceKey = "lastAppearance";

/// Starts in the look the desktop last asked for, so that nothing flashes, and follows it from then on.
void followDesktop(kelvara::DesktopAppearance& desktop, QApplication& application,
                   kelvara::Preferences& preferences) {
    const auto last = preferences.text(appearanceKey);
    kelvara::applyTheme(application, last == "light" ? Theme::Appearance::light : Theme::Appearance::dark);
    QObject::connect(&desktop, &kelvara::DesktopAppearance::appearanceChanged, &application,
                     [&application, &preferences](Theme::Appearance appearance) {
                         preferences.setText(appearanceKey,
                                             appearance == Theme::Appearance::light ? "light" : "dark");
                         if (Theme::current().appearance != appearance)
                             kelvara::applyTheme(application, appearance);
                     });
}

} // namespace

int main(int argumentCount, char** argumentValues) {
#ifdef NDEBUG
    QApplication application{argumentCount, argumentValues};
#else
    kelvara::WatchedApplication application{argumentCount, argumentValues};
#endif
    QCoreApplication::setApplicationName(QStringLiteral("Kelvara"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KELVARA_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("kelvara"));
    const auto arguments = parse(application, {argumentValues, static_cast<std::size_t>(argumentCount)});
    kelvara::installPlatformCatalogue(application);
    QGuiApplication::setWindowIcon(kelvara::applicationIcon());

    // Pictures for the documentation depend on nobody's settings, and change none.
    const auto takesScreenshots = !arguments.screenshotFolder.isEmpty();
    const QTemporaryDir scratch;
    const auto scratchPreferences = scratch.filePath(QStringLiteral("kelvara.conf"));
    if (takesScreenshots) { // so that nobody is asked where to copy
        QSettings{scratchPreferences, QSettings::IniFormat}.setValue(
            QStringLiteral("copyDestination"), scratch.filePath(QStringLiteral("Selects")));
    }
    kelvara::applyTheme(application, arguments.appearance.value_or(Theme::Appearance::dark));
    kelvara::KelvaraApp app{
        {.folder = arguments.folder,
         .preferencesPath =
             takesScreenshots ? scratch.filePath(QStringLiteral("kelvara.conf")) : preferencesPath(),
         .dataFolder = dataFolder(
             takesScreenshots ? scratch.path()
                              : QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)),
         .countsUsage = !takesScreenshots}};
    kelvara::DesktopAppearance desktop{QDBusConnection::sessionBus()};
    QObject::connect(&desktop, &kelvara::DesktopAppearance::reducedMotionChanged, &kelvara::setReducedMotion);
    if (!arguments.appearance && !takesScreenshots) followDesktop(desktop, application, app.preferences());

    if (arguments.size && takesScreenshots)
        app.window().keepSize(*arguments.size);
    else if (arguments.size)
        app.window().resize(*arguments.size);
    app.window().show();
    const kelvara::TerminationWatch termination{[&app] { app.window().closeWithoutAsking(); }};
    std::optional<kelvara::Screenshots> screenshots;
    if (takesScreenshots) {
        screenshots.emplace(app.library(), app.window(), arguments.screenshotFolder,
                            arguments.screenshotNames, [](int status) { QCoreApplication::exit(status); });
    }
    return QApplication::exec();
}
