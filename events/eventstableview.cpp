#include "events/eventstableview.h"

#include "events/eventcelldelegate.h"
#include "events/eventstablemodel.h"
#include "platform/launcher/fittingheader.h"
#include "platform/otdr/screennumber.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QScroller>
#include <QToolTip>

#include <memory>

namespace Waveform {

namespace {

// For a fingertip, and yet five rows in the strip below the plot.
constexpr int kRowHeight_px = 34;
constexpr int kRows = 5;

} // namespace

EventsTableView::EventsTableView(QWidget* parent)
    : QTableView(parent)
{
    setWindowTitle(tr("Events"));
    setLocale(screennumber::locale()); // of cells that hold numbers, not texts
    setHorizontalHeader(new FittingHeader(this));
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    horizontalHeader()->setSectionsMovable(false);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(kRowHeight_px);
    setVerticalScrollMode(ScrollPerPixel);
    QScroller::grabGesture(viewport(), QScroller::LeftMouseButtonGesture); // touches are the mouse
    // Where there is room for one or two rows, halves of them could not be read.
    QScroller::scroller(viewport())->setSnapPositionsY(0.0, kRowHeight_px);
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectRows);
    setAlternatingRowColors(true);
    setTabKeyNavigation(false); // Tab leads on to the next control
    setWordWrap(false);
    setItemDelegate(new EventCellDelegate(this));
}

void EventsTableView::setModel(QAbstractItemModel* model)
{
    QTableView::setModel(model);
    const auto* events = qobject_cast<EventsTableModel*>(model);
    if (events != nullptr && events->selectionModel() != selectionModel()) {
        const std::unique_ptr<QItemSelectionModel> replaced(selectionModel());
        setSelectionModel(events->selectionModel());
    }
}

QSize EventsTableView::sizeHint() const
{
    const int header_px = horizontalHeader()->sizeHint().height();
    return {QTableView::sizeHint().width(), header_px + kRows * kRowHeight_px + 2 * frameWidth()};
}

void EventsTableView::resizeEvent(QResizeEvent* event)
{
    const bool wasInView =
        QRect(QPoint(), event->oldSize()).contains(visualRect(currentIndex()).center());
    QTableView::resizeEvent(event);
    if (wasInView) {
        scrollTo(currentIndex());
    }
}

bool EventsTableView::viewportEvent(QEvent* event)
{
    const auto* events = qobject_cast<const EventsTableModel*>(model());
    if (event->type() != QEvent::ToolTip || events == nullptr) {
        return QTableView::viewportEvent(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const QModelIndex index = indexAt(help->pos());
    // A text of nothing hides the one before.
    QToolTip::showText(help->globalPos(), helpFor(*events, index), viewport(), visualRect(index));
    return true;
}

QString EventsTableView::helpFor(const EventsTableModel& events, const QModelIndex& index)
{
    if (index.column() == EventsTableModel::Type) {
        return events.typeName(index);
    }
    return events.isBound(index) ? tr("The receiver was saturated: as much was reflected, or more")
                                 : QString();
}

} // namespace Waveform
