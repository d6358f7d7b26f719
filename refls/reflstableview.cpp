#include "refls/reflstableview.h"

#include "platform/launcher/fittingheader.h"
#include "platform/otdr/notewords.h"
#include "platform/otdr/screennumber.h"
#include "refls/multilineddelegate.h"
#include "refls/reflstablemodel.h"
#include "refls/refltablemenu.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QScroller>
#include <QTimerEvent>
#include <QToolTip>

namespace Waveform {

namespace {

constexpr int kLongTap_ms = 500;
constexpr int kTouchHeight = 44;

} // namespace

ReflsTableView::ReflsTableView(QWidget* parent)
    : QTableView(parent)
    , menu(new ReflTableMenu(this))
{
    setWindowTitle(tr("Reflectograms"));
    setLocale(screennumber::locale()); // of cells that hold numbers, not texts
    setProperty("palette_id", "table"); // light, for names in the colours of the curves
    setupHeaders();
    setItemDelegate(new MultilinedDelegate(this));
    setTextElideMode(Qt::ElideMiddle); // names of one run begin alike and end with the wavelength
    setSelectionMode(QAbstractItemView::NoSelection);
    setFocusPolicy(Qt::NoFocus);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setupScrolling();
    // As high as its rows where there is room, so that a short set leaves it to the plot.
    setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    connect(menu, SIGNAL(clicked( int )), SLOT(clicked( int )));
}

void ReflsTableView::setupHeaders()
{
    setHorizontalHeader(new FittingHeader(this));
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    horizontalHeader()->setSectionsMovable(false);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->setMinimumSectionSize(kTouchHeight);
    verticalHeader()->setDefaultSectionSize(kTouchHeight);
    verticalHeader()->hide();
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // the columns share the width
}

void ReflsTableView::setupScrolling()
{
    setVerticalScrollMode(ScrollPerPixel);
    QScroller* scroller = QScroller::scroller(viewport());
    QScrollerProperties properties = scroller->scrollerProperties();
    // The press is told at once, so that a long tap takes no longer where there is to scroll.
    properties.setScrollMetric(QScrollerProperties::MousePressEventDelay, 0.0);
    scroller->setScrollerProperties(properties);
    QScroller::grabGesture(viewport(), QScroller::LeftMouseButtonGesture); // touches are the mouse
    connect(scroller,
            SIGNAL(stateChanged( QScroller::State )), SLOT(onScrolling( QScroller::State )));
}

void ReflsTableView::onScrolling(QScroller::State state)
{
    if (state == QScroller::Dragging) {
        stopLongTapTimer(); // the finger is on no row any more
    }
}

void ReflsTableView::setModel(QAbstractItemModel* newModel)
{
    if (auto* before = qobject_cast<ReflsTableModel*>(model())) {
        before->disconnect(SIGNAL(resize()), this, SLOT(resize()));
        disconnect(SIGNAL(deleteAllRefls()), before, SLOT(deleteAllRefls()));
        disconnect(SIGNAL(deleteRefl( int )), before, SLOT(deleteRefl( int )));
        disconnect(SIGNAL(mainReflChanged( int )), before, SLOT(setMainRefl( int )));
    }
    QTableView::setModel(newModel);
    if (auto* refls = qobject_cast<ReflsTableModel*>(newModel)) {
        connect(refls, SIGNAL(resize()), SLOT(resize()));
        connect(this, SIGNAL(deleteAllRefls()), refls, SLOT(deleteAllRefls()));
        connect(this, SIGNAL(deleteRefl( int )), refls, SLOT(deleteRefl( int )));
        connect(this, SIGNAL(mainReflChanged( int )), refls, SLOT(setMainRefl( int )));
    }
}

void ReflsTableView::resize()
{
    resizeRowsToContents();
}

void ReflsTableView::setMenuDisabled(bool disabled)
{
    menuEnabled = !disabled;
}

void ReflsTableView::clicked(int id)
{
    switch (id) {
    case ReflTableMenu::SetAsMain:
        emit mainReflChanged(menuRow);
        break;
    case ReflTableMenu::Delete:
        emit deleteRefl(menuRow);
        break;
    case ReflTableMenu::DeleteAll:
        emit deleteAllRefls();
        break;
    default:
        break;
    }
}

void ReflsTableView::mousePressEvent(QMouseEvent* event)
{
    stopLongTapTimer(); // of another button that is still down
    longTapTimer = startTimer(kLongTap_ms);
    pressPosition = event->pos();
    QTableView::mousePressEvent(event);
}

void ReflsTableView::mouseReleaseEvent(QMouseEvent* event)
{
    stopLongTapTimer();
    QTableView::mouseReleaseEvent(event);
}

void ReflsTableView::mouseDoubleClickEvent(QMouseEvent* event)
{
    showMenu(event->pos());
    QTableView::mouseDoubleClickEvent(event);
    // Qt makes a press of one whose first tap was on rows that were reset since; the menu has the
    // release.
    stopLongTapTimer();
}

void ReflsTableView::timerEvent(QTimerEvent* event)
{
    if (longTapTimer >= 0 && event->timerId() == longTapTimer) {
        stopLongTapTimer();
        longTap();
        return;
    }
    QTableView::timerEvent(event);
}

bool ReflsTableView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        QToolTip::showText(help->globalPos(), notesAt(help->pos()), viewport());
        return true;
    }
    return QTableView::viewportEvent(event);
}

QString ReflsTableView::notesAt(QPoint pos) const
{
    const auto* refls = qobject_cast<const ReflsTableModel*>(model());
    if (refls == nullptr) {
        return {};
    }
    QStringList lines;
    for (const QString& note : refls->refls().value(rowAt(pos.y())).notes()) {
        lines << noteWords(note).toHtmlEscaped(); // a note may hold what the file holds
    }
    return lines.isEmpty() ? QString() : "<qt>" + lines.join("<br>") + "</qt>";
}

void ReflsTableView::longTap()
{
    showMenu(pressPosition);
}

void ReflsTableView::showMenu(QPoint pos)
{
    if (!menuEnabled) {
        return;
    }
    const bool isChoice = model() != nullptr && model()->rowCount() >= 2;
    menu->setButtonEnabled(isChoice, ReflTableMenu::DeleteAll);
    menu->setButtonEnabled(isChoice, ReflTableMenu::SetAsMain);
    const QModelIndex index = indexAt(pos);
    if (!index.isValid()) {
        return;
    }
    menuRow = index.row();
    // The position counts from below the header, the view from above it.
    menu->show(mapToGlobal(pos + QPoint(0, horizontalHeader()->height())));
    // The release goes to the menu; without it the next touch would go on with this one's drag.
    QScroller::scroller(viewport())->stop();
}

void ReflsTableView::stopLongTapTimer()
{
    if (longTapTimer >= 0) {
        killTimer(longTapTimer);
        longTapTimer = -1;
    }
}

} // namespace Waveform
