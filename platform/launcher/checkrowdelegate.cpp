#include "platform/launcher/checkrowdelegate.h"

#include <QKeyEvent>

namespace {

bool isTouch(const QEvent& event)
{
    return event.type() == QEvent::MouseButtonRelease
        && static_cast<const QMouseEvent&>(event).button() == Qt::LeftButton;
}

bool isSpace(const QEvent& event)
{
    return event.type() == QEvent::KeyPress
        && static_cast<const QKeyEvent&>(event).key() == Qt::Key_Space;
}

bool isChecked(const QModelIndex& index)
{
    return index.sibling(index.row(), 0).data(Qt::CheckStateRole).toInt() == Qt::Checked;
}

} // namespace

QSize CheckRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    constexpr int kTouchHeight = 48;
    return QStyledItemDelegate::sizeHint(option, index).expandedTo({0, kTouchHeight});
}

bool CheckRowDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                   const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (!isTouch(*event) && !isSpace(*event)) {
        return event->type() == QEvent::MouseButtonDblClick; // its release counts
    }
    if (isTouch(*event) && !option.rect.contains(static_cast<const QMouseEvent*>(event)->pos())) {
        return false; // the finger left the row
    }
    return model->setData(index.sibling(index.row(), 0),
                          isChecked(index) ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

void CheckRowDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->state.setFlag(QStyle::State_Selected, isChecked(index));
}
