#include "tests/endtoend/screenteller.h"

#include <qwt_plot.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QLocalServer>
#include <QLocalSocket>

namespace {

QJsonArray asJson(const QRect& place)
{
    return {place.x(), place.y(), place.width(), place.height()};
}

QRect onScreen(const QWidget& widget, const QRect& place)
{
    return {widget.mapToGlobal(place.topLeft()), place.size()};
}

QString textOf(const QWidget& widget)
{
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
        return button->text();
    }
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        return label->text();
    }
    if (const auto* box = qobject_cast<const QComboBox*>(&widget)) {
        return box->currentText();
    }
    if (const auto* edit = qobject_cast<const QLineEdit*>(&widget)) {
        return edit->text();
    }
    return widget.windowTitle();
}

QJsonArray rowsOf(const QAbstractItemView& view)
{
    QJsonArray rows;
    const QAbstractItemModel* model = view.model();
    for (int row = 0; model != nullptr && row < model->rowCount(); ++row) {
        QJsonArray texts;
        for (int column = 0; column < model->columnCount(); ++column) {
            texts << model->index(row, column).data().toString();
        }
        const QModelIndex first = model->index(row, 0);
        const QRect place = view.visualRect(first);
        rows << QJsonObject {{"texts", texts},
                             {"checked", first.data(Qt::CheckStateRole).toInt() == Qt::Checked},
                             {"enabled", first.flags().testFlag(Qt::ItemIsEnabled)},
                             {"place", asJson(onScreen(*view.viewport(), place))}};
    }
    return rows;
}

QJsonArray axis(const QwtPlot& plot, int id)
{
    const QwtInterval interval = plot.axisInterval(id);
    return {interval.minValue(), interval.maxValue()};
}

} // namespace

QObject* ScreenTeller::create(const QString& /*name*/, const QString& socket)
{
    auto* server = new QLocalServer; // the program deletes it
    QLocalServer::removeServer(socket);
    server->listen(socket);
    connect(server, &QLocalServer::newConnection, server, [server] {
        QLocalSocket* asker = server->nextPendingConnection();
        connect(asker, &QLocalSocket::readyRead, asker, [asker] {
            while (asker->canReadLine()) {
                asker->readLine();
                asker->write(QJsonDocument(visibleWidgets()).toJson(QJsonDocument::Compact) + '\n');
            }
        });
    });
    return server;
}

QJsonArray ScreenTeller::visibleWidgets()
{
    QJsonArray widgets;
    const QWidgetList all = QApplication::allWidgets();
    for (const QWidget* widget : all) {
        if (widget->isVisible()) {
            widgets << tell(*widget);
        }
    }
    return widgets;
}

QJsonObject ScreenTeller::tell(const QWidget& widget)
{
    QString classes;
    for (const QMetaObject* meta = widget.metaObject(); meta != nullptr;
         meta = meta->superClass()) {
        classes += QString(" %1 ").arg(meta->className());
    }
    const QRect place = onScreen(widget, widget.rect());
    const QWidget* touched = QApplication::widgetAt(place.center());
    QJsonObject told {{"class", classes},
                      {"name", widget.objectName()},
                      {"text", textOf(widget)},
                      {"window", static_cast<double>(widget.window()->internalWinId())},
                      {"place", asJson(place)},
                      {"enabled", widget.isEnabled()},
                      {"onTop", touched == &widget || widget.isAncestorOf(touched)}};
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
        told.insert("checked", button->isChecked());
    }
    if (const auto* view = qobject_cast<const QAbstractItemView*>(&widget)) {
        told.insert("rows", rowsOf(*view));
    }
    if (const auto* plot = qobject_cast<const QwtPlot*>(&widget)) {
        told.insert("distances", axis(*plot, QwtPlot::xBottom));
        told.insert("levels", axis(*plot, QwtPlot::yLeft));
        told.insert("curves", plot->itemList(QwtPlotItem::Rtti_PlotCurve).size());
    }
    return told;
}
