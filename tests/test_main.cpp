// Test entry: one QApplication on the offscreen platform for every test.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Tests never touch the user's settings or lists.
    QTemporaryDir home;
    if (qEnvironmentVariableIsEmpty("MIXORA_CONFIG_DIR"))
        qputenv("MIXORA_CONFIG_DIR", (home.path() + "/config").toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("MIXORA_DATA_DIR"))
        qputenv("MIXORA_DATA_DIR", (home.path() + "/data").toLocal8Bit());
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
