#pragma once

#include <QItemDelegate>

/// Draws table cells in rows of one height, enough for two lines.
class MultilinedDelegate : public QItemDelegate
{
    Q_OBJECT

public:
    using QItemDelegate::QItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
};
