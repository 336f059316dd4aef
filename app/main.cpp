// Program entry: builds the main window, applies the dark stylesheet,
// shows the splash picture for two seconds, then runs the event loop.
#include "draw.h"
#include "jobwindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPixmap>
#include <QSplashScreen>
#include <QThread>
#include <QTextStream>
#include <cstdio>
#include <cstring>

namespace {
constexpr qint64 SplashMilliseconds = 2000;
}

int main(int argc, char *argv[])
{
    // Answered before Qt starts, so it needs no display.
    if (argc > 1 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("TarnwellLaser %s\n", TARNWELL_VERSION);
        return 0;
    }
    QApplication app(argc, argv);
    Draw window;

    QFile style(QStringLiteral(":/qdarkstyle/test.qss"));
    if (style.exists() && style.open(QFile::ReadOnly | QFile::Text)) {
        QTextStream in(&style);
        app.setStyleSheet(in.readAll());
    } else {
        std::printf("Unable to set stylesheet, file not found\n");
        std::fflush(stdout);
    }

    QSplashScreen splash(QPixmap(QStringLiteral(":/img/earth.jpg")));
    splash.setEnabled(false);  // takes no clicks
    splash.show();

    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < SplashMilliseconds) {
        app.processEvents();
        QThread::msleep(10);  // no need to spin a core at full speed
    }

    splash.close();
    window.show();
    // A job file named on the command line (a double-click in a file manager) opens in the Job window.
    const QStringList arguments = app.arguments();
    if (arguments.size() > 1
        && QFileInfo(arguments.at(1)).suffix().compare(QLatin1String("tljob"), Qt::CaseInsensitive) == 0) {
        window.jobWindow()->show();
        window.jobWindow()->openJob(arguments.at(1));
        window.jobWindow()->raise();
    }
    return app.exec();
}
