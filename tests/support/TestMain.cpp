#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <clocale>

// Tests never touch the real home: every per-user folder points into one
// temporary folder made for this run.
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    if (!home.isValid())
        return 2;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/config").toUtf8());
    qputenv("XDG_DATA_HOME", (home.path() + "/data").toUtf8());
    qputenv("XDG_CACHE_HOME", (home.path() + "/cache").toUtf8());
    qputenv("XDG_CONFIG_DIRS", (home.path() + "/etc-xdg").toUtf8()); // the system mimeapps.list
    qputenv("XDG_CURRENT_DESKTOP", "");

    QApplication app(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // libmpv refuses to start otherwise
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
