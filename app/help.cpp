#include "app/help.h"

#include "app/environment.h"
#include "app/libraries.h"
#include "app/textdialog.h"
#include "platform/launcher/configstore.h"
#include "platform/launcher/zulauncherconfig.h"

#include <QCoreApplication>
#include <QDir>
#include <QPushButton>
#include <QVector>

namespace help {

namespace {

/// Texts of this file.
struct Words
{
    Q_DECLARE_TR_FUNCTIONS(Help)
};

using Row = QStringList;

QString title(const QString& text)
{
    return "<h3>" + text.toHtmlEscaped() + "</h3>";
}

/// A table whose first column is what one looks for.
QString table(const QVector<Row>& rows)
{
    QString markup = "<table cellspacing='0' cellpadding='3'>";
    for (const Row& row : rows) {
        markup += "<tr>";
        for (int i = 0; i < row.size(); ++i) {
            const QString text = row.at(i).toHtmlEscaped();
            markup += i == 0 ? "<td width='30%'><b>" + text + "</b></td>" : "<td>" + text + "</td>";
        }
        markup += "</tr>";
    }
    return markup + "</table>";
}

QVector<Row> steps()
{
    return {
        {Words::tr("Measure"),
         Words::tr("Choose the settings, press Start; the same button ends it early.")},
        {Words::tr("Open traces"),
         Words::tr("Press Load, or drop .sor files on the window: up to four at a time.")},
        {Words::tr("Save"),
         Words::tr("Press Save and give a name: the trace and its report are written.")},
        {Words::tr("Events, Reflectograms"),
         Words::tr("Show and hide the tables. A long or double tap on a reflectogram offers "
                   "to make it the main one or to delete it.")},
        {Words::tr("Measurement"),
         Words::tr("Shows the markers A and B; drag them to where to measure.")},
        {Words::tr("Settings"), Words::tr("Shows and hides the choices of a measurement.")},
        {Words::tr("Moon"), Words::tr("Changes between the colours of day and night.")},
    };
}

QVector<Row> gestures()
{
    return {
        {Words::tr("Drag the chart"), Words::tr("moves the view, by finger or mouse")},
        {Words::tr("+  –  1:1"), Words::tr("zoom in, zoom out, show everything")},
        {Words::tr("Right, Left"), Words::tr("narrow and widen the distances")},
        {Words::tr("Up, Down"), Words::tr("narrow and widen the levels")},
        {Words::tr("Very short tap on A or B"), Words::tr("chooses the marker, or leaves it")},
        {Words::tr("Wheel, Page Up, Page Down"), Words::tr("move the chosen marker step by step")},
        {Words::tr("Tab, Space, Enter"), Words::tr("go to a control, press it")},
        {Words::tr("Ctrl+O, Ctrl+S, Ctrl+Q"), Words::tr("load, save, leave")},
        {Words::tr("F1, Escape"), Words::tr("this page, close a page or a message")},
    };
}

QVector<Row> places()
{
    return {
        {Words::tr("Traces, reports"),
         QDir::homePath() + '/' + ZuLauncherConfig("paths", "otdr").toString()},
        {Words::tr("Configuration"), configstore::directory()},
        {Words::tr("While measuring"), Environment::temporaryDir()},
    };
}

void showAbout(QWidget* over)
{
    auto* dialog = new TextDialog(Words::tr("About Waveform"), over);
    dialog->setObjectName("about");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setPage(about());
    dialog->setModal(true);
    dialog->show();
}

} // namespace

QString page()
{
    return title(Words::tr("What to press")) + table(steps()) + title(Words::tr("Chart and keys"))
        + table(gestures()) + title(Words::tr("Where files go")) + table(places());
}

QString about()
{
    QVector<Row> rows;
    const QVector<Library> all = libraries();
    for (const Library& library : all) {
        rows << Row {(library.name + ' ' + library.version).trimmed(), library.purpose,
                     library.licence};
    }
    return "<h2>"
        + Words::tr("Waveform %1").arg(QCoreApplication::applicationVersion()).toHtmlEscaped()
        + "</h2><p>"
        + Words::tr("An OTDR workstation: measures optical fibres, shows their reflectograms, "
                    "finds their "
                    "events, compares up to four traces and keeps them with a report.")
              .toHtmlEscaped()
        + "</p>" + title(Words::tr("Built on")) + table(rows);
}

void show(QWidget* over)
{
    auto* dialog = over->findChild<TextDialog*>("help", Qt::FindDirectChildrenOnly);
    if (dialog == nullptr) {
        dialog = new TextDialog(Words::tr("Help"), over);
        dialog->setObjectName("help");
        QPushButton* about = dialog->addButton(Words::tr("About"));
        about->setObjectName("aboutButton");
        QObject::connect(about, &QPushButton::clicked, dialog, [dialog] { showAbout(dialog); });
    }
    dialog->setPage(page()); // what is configured may have changed
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

} // namespace help
