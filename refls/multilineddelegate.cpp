#include "refls/multilineddelegate.h"

QSize MultilinedDelegate::sizeHint(const QStyleOptionViewItem& /*option*/,
                                   const QModelIndex& /*index*/) const
{
    return {120, 40};
}
