#pragma once

#include <QFont>
#include <QStyledItemDelegate>

namespace Waveform {

/// Shows the cells of the events table: an icon in the middle and in its own colours, chosen or
/// not, where a style would put it at the left and paint over it; a text always whole, with a sign
/// before a number that is only a bound.
class EventCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit EventCellDelegate(QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

    /// The font, or a smaller one of its kind in which the text is no wider than so many pixels.
    /// Never less than half the size.
    [[nodiscard]] static QFont fitting(const QFont& font, const QString& text, int width_px);

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace Waveform
