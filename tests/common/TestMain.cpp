#include <QCoreApplication>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>

#if defined(PLCDB_TEST_GUI)
#include <QApplication>
#endif

#include <gtest/gtest.h>

int main(int argc, char** argv) {
#if defined(PLCDB_TEST_GUI)
    // Real widgets, drawn nowhere.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
#else
    QCoreApplication app(argc, argv);
#endif
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // The user's settings of a test run live and die with it.
    QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
