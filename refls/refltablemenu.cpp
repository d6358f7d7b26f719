#include "refls/refltablemenu.h"

#include "platform/launcher/touchbutton.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QVBoxLayout>

namespace {

constexpr int kWidth = 200;
constexpr int kButtonHeight = 60;
const QSize kButtonBaseSize(195, kButtonHeight);

} // namespace

ReflTableMenu::ReflTableMenu(QWidget* parent)
    : BasePopupWindow(parent)
    , buttons(new QButtonGroup(this))
{
    setLayout(new QVBoxLayout);
    createButton(SetAsMain, tr("Set as main"));
    createButton(Delete, tr("Delete"));
    createButton(DeleteAll, tr("Delete all"));
    connect(buttons, SIGNAL(buttonClicked( int )), SLOT(buttonClicked( int )));
}

void ReflTableMenu::createButton(int id, const QString& text)
{
    auto* button = new TouchButton(text); // the layout gives it to the menu
    button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    button->setBaseSize(kButtonBaseSize);
    layout()->addWidget(button);
    buttons->addButton(button, id);
    ++visibleButtons;
}

void ReflTableMenu::show(QPoint pos)
{
    // Margin and spacing stand in each other's place; with the usual styles that is as high as it
    // takes.
    const int between = layout()->contentsMargins().bottom() * (visibleButtons - 1);
    const int around = 2 * layout()->spacing();
    showWithoutCaller(pos, QSize(kWidth, visibleButtons * kButtonHeight + between + around));
}

void ReflTableMenu::setButtonHidden(bool hidden, int idx)
{
    QAbstractButton* button = buttons->button(idx);
    if (button == nullptr || button->isHidden() == hidden) {
        return;
    }
    button->setHidden(hidden);
    visibleButtons += hidden ? -1 : 1;
}

void ReflTableMenu::setButtonEnabled(bool enabled, int idx)
{
    QAbstractButton* button = buttons->button(idx);
    if (button != nullptr && button->isEnabled() != enabled) {
        button->setEnabled(enabled);
    }
}

void ReflTableMenu::buttonClicked(int id)
{
    close();
    emit clicked(id);
}
