#include <gmock/gmock.h>

#include <QApplication>
#include <QStandardPaths>

#include <clocale>

int main(int argumentCount, char** arguments) {
    // Without a desktop unless the caller names one, so that tests run the same everywhere.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    testing::InitGoogleMock(&argumentCount, arguments);
    const QApplication application{argumentCount, arguments};
    return RUN_ALL_TESTS();
}
