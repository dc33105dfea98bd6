// All tests of the console in one program: they share one practice server and one set of settings,
// both thrown away at the end.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

int main(int argc, char** argv)
{
    const QTemporaryDir ajustes;
    qputenv("XDG_CONFIG_HOME", ajustes.path().toUtf8());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    const QApplication programa(argc, argv);
    return RUN_ALL_TESTS();
}
