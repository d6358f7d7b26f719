#include "window/emptyhint.h"

#include "platform/launcher/palettefactory.h"
#include "refls/reflstablemodel.h"
#include "window/pagegeometry.h"

#include <QEvent>

namespace Waveform {

namespace {

/// On the chart's paper: 5 to 1, which reads well and does not shout.
const QColor kQuietInk(0x5f, 0x6b, 0x76);

constexpr int kMargin = 12;
constexpr double kLarger = 1.3;

} // namespace

EmptyHint::EmptyHint(QWidget* canvas, ReflsTableModel* refls)
    : QLabel(canvas)
    , refls(refls)
{
    setObjectName("emptyHint");
    showWay();
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setMargin(kMargin);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    QPalette ink = PaletteFactory::getPalette("chart");
    ink.setColor(QPalette::WindowText, kQuietInk);
    setPalette(ink);
    setAutoFillBackground(true); // words across the lines of the grid are hard to read
    QFont larger = font();
    larger.setPointSizeF(larger.pointSizeF() * kLarger);
    setFont(larger);
    canvas->installEventFilter(this);
    connect(refls, SIGNAL(modelReset()), SLOT(showWhereEmpty()));
    lower();
    showWhereEmpty();
}

void EmptyHint::heed(QWidget* startButton, QWidget* resultBox)
{
    start = startButton;
    results = resultBox;
    startButton->installEventFilter(this);
    resultBox->installEventFilter(this);
    showWay();
}

void EmptyHint::follow(MeasModel* newModel)
{
    if (model != nullptr) {
        model->disconnect(this);
    }
    model = newModel;
    isMeasuring = model != nullptr && model->isStarted();
    if (model != nullptr) {
        connect(model, SIGNAL(started( MeasModel* )), SLOT(onStarted()));
        connect(model, SIGNAL(stopped( MeasModel* )), SLOT(onStopped()));
    }
    showWhereEmpty();
}

void EmptyHint::onStarted()
{
    isMeasuring = true;
    showWhereEmpty();
}

void EmptyHint::onStopped()
{
    isMeasuring = false;
    showWhereEmpty();
}

void EmptyHint::showWhereEmpty()
{
    setVisible(!isMeasuring && !refls.isNull() && refls->rowCount() == 0);
}

void EmptyHint::showWay()
{
    const bool isStartHere = start.isNull() || start->isVisibleTo(window());
    setText(isStartHere ? tr(
                "Press Start to measure.\nPress Load to open traces,\nor drop their files here.")
                        : tr("Press Settings, then Start.\nPress Load to open traces,\nor drop "
                             "their files here."));
}

void EmptyHint::place()
{
    const bool isBeside = !results.isNull() && !results->isHidden();
    setGeometry(pagegeometry::hintPlace(parentWidget()->rect(),
                                        isBeside ? results->geometry() : QRect(), sizeHint()));
}

bool EmptyHint::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::Hide:
        showWay();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::HideToParent:
        break;
    default:
        return QLabel::eventFilter(watched, event);
    }
    if (isVisible()) {
        place();
    }
    return QLabel::eventFilter(watched, event);
}

void EmptyHint::showEvent(QShowEvent* event)
{
    showWay();
    place();
    QLabel::showEvent(event);
}

} // namespace Waveform
