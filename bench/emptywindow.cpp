// What starting costs without us: a window with an empty chart, as large as the application makes
// its own.

#include <qwt_plot.h>

#include <QApplication>
#include <QScreen>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QwtPlot plot;
    plot.resize(QSize(1280, 800).boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    plot.show();
    return QApplication::exec();
}
