#include <QApplication>

#include <cstdlib>
#include <gtest/gtest.h>

// Renderer tests draw and take input on Qt's offscreen platform: no display, same pixels anywhere.
int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
