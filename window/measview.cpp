#include "window/measview.h"

#include "platform/launcher/touchbutton.h"

#include <QButtonGroup>
#include <QHideEvent>
#include <QShowEvent>

namespace {

constexpr int kButtonWidth = 140;
constexpr int kTouchHeight = 52;

} // namespace

MeasView::MeasView(QWidget* parent)
    : ControlBottomPanel(parent)
    , buttons(new QButtonGroup(this))
{
    setWindowTitle(tr("Measurement"));
    buttons->addButton(addButton(tr("2 points")), TwoPoints);
    buttons->addButton(addButton(tr("2 pt + LSA")), TwoPointsLsa);
    const auto modeButtons = buttons->buttons();
    for (QAbstractButton* button : modeButtons) {
        button->setCheckable(true);
    }
    buttons->button(mode)->setChecked(true);
    connect(buttons, SIGNAL(buttonClicked( int )), SLOT(onButtonClicked( int )));
    addSpacer(0);
    connect(addButton(tr("Markers to screen")), SIGNAL(clicked()), SIGNAL(needMarkersOnScreen()));
}

QPushButton* MeasView::addButton(const QString& text)
{
    auto* button = new TouchButton(text);
    button->setMinimumHeight(kTouchHeight);
    addWidget(button, kButtonWidth, 0);
    button->setMinimumWidth(qMax(kButtonWidth, button->minimumSizeHint().width()));
    return button;
}

void MeasView::setMode(MeasView::Modes mode)
{
    setMode(static_cast<int>(mode));
}

void MeasView::setMode(int mode)
{
    // The stored mode comes from a file, which may hold anything.
    if (QAbstractButton* button = buttons->button(mode)) {
        button->click();
    }
}

void MeasView::onButtonClicked(int id)
{
    if (id != TwoPoints && id != TwoPointsLsa) {
        return;
    }
    visible2p = isVisible();
    usingLSA = id == TwoPointsLsa;
    emit modeChanged(id);
    emit modeChanged(static_cast<Modes>(id));
    emit usingLSAChanged(usingLSA);
    emit visibility2pChanged(visible2p);
}

void MeasView::showEvent(QShowEvent* event)
{
    ControlBottomPanel::showEvent(event);
    if (!event->spontaneous()) {
        emit visibilityChanged(true);
    }
}

void MeasView::hideEvent(QHideEvent* event)
{
    ControlBottomPanel::hideEvent(event);
    if (!event->spontaneous()) {
        emit visibilityChanged(false);
    }
}

bool MeasView::focusNextPrevChild(bool next)
{
    const auto modeButtons = buttons->buttons();
    for (QAbstractButton* button : modeButtons) {
        button->setFocusPolicy(Qt::StrongFocus);
    }
    return ControlBottomPanel::focusNextPrevChild(next);
}
