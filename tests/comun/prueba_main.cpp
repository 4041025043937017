#include <QApplication>
#include <QLocale>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <cstdlib>

// Widget tests run without a display; numbers and dates are pinned to one locale so a
// test means the same on every machine.
int main(int argc, char **argv)
{
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Uruguay));
    QApplication app(argc, argv);
    // Files a test leaves in the user's folders go to a test location instead.
    QStandardPaths::setTestModeEnabled(true);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
