// Saves one trace as the application does, says what the user is told on standard output and what
// the log is told on standard error.

#include "refls/reflstablemodel.h"
#include "storage/keeper.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

namespace {

/// Says what there is to say about the saves of a keeper.
class Listener : public QObject
{
    Q_OBJECT

public slots:

    void tell(QString text)
    {
        std::printf("%s\n", qPrintable(text));
        std::fflush(stdout);
    }
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3 || arguments.size() > 4) {
        std::fputs("usage: saveonce TRACE NAME [leave]\n", stderr);
        return 2;
    }
    Waveform::ReflsTableModel refls;
    Waveform::Keeper keeper(nullptr, &refls);
    Listener listener;
    QObject::connect(&keeper,
                     SIGNAL(showNotification( QString )), &listener, SLOT(tell( QString )));
    refls.addReflFromFile(arguments.at(1));
    if (arguments.size() == 4) {
        QTimer::singleShot(0, &keeper, [&keeper] { keeper.quitWanted(); });
    }
    return keeper.doSave(arguments.at(2)) == 0 ? 0 : 1;
}

#include "saveonce.moc"
