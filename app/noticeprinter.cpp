#include "app/noticeprinter.h"

#include "platform/launcher/abstractkeeper.h"

#include <QTextStream>

NoticePrinter::NoticePrinter(const AbstractKeeper* keeper)
{
    // By its signature: the signal is that of the plugin's keeper, which is not known here.
    connect(keeper, SIGNAL(showNotification( QString )), SLOT(print( QString )));
}

void NoticePrinter::print(const QString& text)
{
    if (text == last) {
        return;
    }
    last = text;
    QTextStream(stderr) << "waveform: " << QString(text).replace('\n', ' ') << "\n";
}
