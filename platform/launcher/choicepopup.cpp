#include "platform/launcher/choicepopup.h"

#include "platform/launcher/popupgeometry.h"
#include "platform/launcher/touchbutton.h"

#include <QGridLayout>

ChoicePopup::ChoicePopup(const QVector<Choice>& choices, int current, QWidget* parent)
    : BasePopupWindow(parent)
    , current(current)
{
    constexpr int kMargin = 6;
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    grid->setSpacing(kMargin);
    const int columns = popupgeometry::choiceColumns(choices.size());
    for (int i = 0; i < choices.size(); ++i) {
        grid->addWidget(newButton(choices.at(i)), i / columns, i % columns);
    }
}

QPushButton* ChoicePopup::newButton(const Choice& choice)
{
    constexpr int kWidth = 110;
    constexpr int kTouchHeight = 52;
    auto* button = new TouchButton(choice.text, this);
    button->setMinimumSize(kWidth, kTouchHeight);
    button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    button->setCheckable(true);
    button->setChecked(choice.id == current);
    if (initial == nullptr || choice.id == current) {
        initial = button;
    }
    connect(button, &QPushButton::clicked, this, [this, id = choice.id] {
        close();
        emit chosen(id);
    });
    return button;
}

void ChoicePopup::showEvent(QShowEvent* event)
{
    BasePopupWindow::showEvent(event);
    if (initial != nullptr) {
        initial->setFocus(Qt::PopupFocusReason);
    }
}
