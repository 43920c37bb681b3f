#include "ui/UserInterface.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>

// What fontconfig and Qt's QML engine keep until the process ends is not ours to free.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libfontconfig\nleak:libQt6Qml\nleak:libQt6Quick\nleak:libQt6Gui\n";
}

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    brindle::useSoftwareRenderer();
    QApplication application(argc, argv);
    // Pinned, so that widths are the same everywhere.
    QApplication::setFont(QFont(qEnvironmentVariable("BRINDLE_FONT", QStringLiteral("DejaVu Sans"))));
    return RUN_ALL_TESTS();
}
