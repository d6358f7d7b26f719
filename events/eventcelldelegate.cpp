#include "events/eventcelldelegate.h"

#include "events/eventstablemodel.h"
#include "platform/launcher/fittedfont.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPixmap>

namespace Waveform {

namespace {

/// What a style keeps free beside a text, both sides together.
constexpr int kTextMargins_px = 8;

constexpr QChar kNoLess(0x2265);

} // namespace

EventCellDelegate::EventCellDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{
}

void EventCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const
{
    const auto icon = index.data(Qt::DecorationRole).value<QPixmap>();
    if (icon.isNull()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem ground(option);
    initStyleOption(&ground, index);
    ground.features &= ~QStyleOptionViewItem::HasDecoration;
    ground.icon = QIcon();
    const QStyle* style = ground.widget != nullptr ? ground.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &ground, painter, ground.widget);
    const QSize size = icon.size() / icon.devicePixelRatio();
    painter->drawPixmap(QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size, option.rect),
                        icon);
}

void EventCellDelegate::initStyleOption(QStyleOptionViewItem* option,
                                        const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const auto* events = qobject_cast<const EventsTableModel*>(index.model());
    if (events != nullptr && events->isBound(index)) {
        option->text.prepend(QString("%1 ").arg(kNoLess)); // as in reports
    }
    if (option->rect.isValid() && !option->text.isEmpty()) {
        option->font = fitting(option->font, option->text, option->rect.width() - kTextMargins_px);
        option->fontMetrics = QFontMetrics(option->font);
    }
}

QFont EventCellDelegate::fitting(const QFont& font, const QString& text, int width_px)
{
    return fittedFont(font, text, width_px);
}

} // namespace Waveform
