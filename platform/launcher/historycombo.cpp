#include "platform/launcher/historycombo.h"

#include "platform/launcher/choicepopup.h"
#include "platform/launcher/historyorder.h"
#include "platform/launcher/settingrules.h"

#include <QKeyEvent>
#include <QStyleOptionComboBox>
#include <QStylePainter>

#include <memory>

namespace {

constexpr int kTouchHeight = 44;
constexpr int kUsesRole = Qt::UserRole + 1;

QSize touchable(const QSize& size)
{
    return size.expandedTo(QSize(kTouchHeight, kTouchHeight));
}

} // namespace

HistoryCombo::HistoryCombo(QWidget* parent, bool editable)
    : QComboBox(parent)
{
    setEditable(editable);
    connect(this, qOverload<int>(&QComboBox::currentIndexChanged), this, &HistoryCombo::announce);
    connect(this, qOverload<int>(&QComboBox::activated), this, &HistoryCombo::countUse);
}

HistoryCombo::~HistoryCombo()
{
    // Their end is told to the box, which must still be one; closed ones may wait for theirs.
    qDeleteAll(findChildren<ChoicePopup*>(QString(), Qt::FindDirectChildrenOnly));
}

void HistoryCombo::addItems(const QStringList& labels, const QList<QVariant>& values)
{
    for (int i = 0; i < labels.size(); ++i) {
        addItem(labels.at(i), values.value(i));
    }
}

int HistoryCombo::indexOfData(const QVariant& value) const
{
    for (int i = 0; i < count(); ++i) {
        if (settingrules::equal(itemData(i), value)) {
            return i;
        }
    }
    return -1;
}

QSize HistoryCombo::sizeHint() const
{
    return touchable(QComboBox::sizeHint());
}

QSize HistoryCombo::minimumSizeHint() const
{
    return touchable(QComboBox::minimumSizeHint());
}

void HistoryCombo::setCurrentIndexByData(const QVariant& value)
{
    const int index = indexOfData(value);
    setForeign(index >= 0 ? QVariant() : value);
    if (index >= 0) {
        setCurrentIndex(index);
    }
}

void HistoryCombo::setWording(const Wording& newWording)
{
    wording = newWording;
    update();
}

QString HistoryCombo::shownText() const
{
    if (!foreign.isValid()) {
        return currentText();
    }
    return wording ? wording(foreign) : foreign.toString();
}

void HistoryCombo::setForeign(const QVariant& value)
{
    foreign = value;
    update();
}

void HistoryCombo::announce()
{
    // An entry that was inserted or removed before the selected one moves the index alone.
    const QVariant value = currentData();
    if (value == announced && value.userType() == announced.userType()) {
        return;
    }
    announced = value;
    setForeign({});
    emit currentDataChanged(value);
}

void HistoryCombo::countUse(int index)
{
    setItemData(index, itemData(index, kUsesRole).toInt() + 1, kUsesRole);
    if (foreign.isValid()) { // the entry that was selected all the time was chosen from a list
        setForeign({});
        emit currentDataChanged(currentData());
    }
}

QVector<int> HistoryCombo::offeredOrder() const
{
    QVector<int> uses;
    for (int i = 0; i < count(); ++i) {
        uses << itemData(i, kUsesRole).toInt();
    }
    return historyOrder(uses, history ? historyCount : 0);
}

void HistoryCombo::showPopup()
{
    if (count() == 0) {
        return;
    }
    if (popup) {
        popup->close(); // goes by itself: it may be handling the tap that brought us here
    }
    QVector<ChoicePopup::Choice> choices;
    const QVector<int> order = offeredOrder();
    for (const int index : order) {
        choices << ChoicePopup::Choice {index, itemText(index)};
    }
    const int chosen = foreign.isValid() ? -1 : currentIndex();
    auto made = std::make_unique<ChoicePopup>(choices, chosen, this);
    const QSize wanted = made->sizeHint();
    const QSize room = BasePopupWindow::screenAt(mapToGlobal(rect().center())).size();
    if (wanted.boundedTo(room) != wanted) {
        QComboBox::showPopup(); // too many for buttons: a list that scrolls
        return;
    }
    popup = made.release(); // the box's child
    popup->setAttribute(Qt::WA_DeleteOnClose);
    connect(popup, &ChoicePopup::chosen, this, &HistoryCombo::choose);
    connect(popup, &QObject::destroyed, this, [this] { QComboBox::hidePopup(); });
    popup->showAtCaller(*this, QSize(qMax(wanted.width(), width()), wanted.height()));
}

void HistoryCombo::hidePopup()
{
    if (popup) {
        popup->close();
    }
    QComboBox::hidePopup();
}

void HistoryCombo::choose(int index)
{
    if (index == currentIndex()) {
        setForeign({});
        emit currentDataChanged(currentData()); // what is bound to the box may hold another value
    }
    setCurrentIndex(index);
    emit activated(index);
}

void HistoryCombo::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && !isEditable()) {
        showPopup();
        return;
    }
    QComboBox::keyPressEvent(event);
}

void HistoryCombo::paintEvent(QPaintEvent* event)
{
    if (!foreign.isValid()) {
        QComboBox::paintEvent(event);
        return;
    }
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText = fontMetrics().elidedText(shownText(), Qt::ElideRight, field.width());
    option.currentIcon = QIcon();
    QStylePainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
