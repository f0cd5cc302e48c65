// The windows' tests: an application without a screen, with the theme of the host.
#include <clocale>
#include <cstdio>

#include <QApplication>

#include "program.h"

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& words) {
        // What a platform without a screen cannot do is no news.
        if (type != QtInfoMsg && type != QtDebugMsg &&
            !words.startsWith(QLatin1String("This plugin")))
            std::fprintf(stderr, "%s\n", words.toLocal8Bit().constData());
    });
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Windows"));
    std::setlocale(LC_ALL, "");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
