#include "refls/multilineddelegate.h"

#include <QStandardItemModel>
#include <QStyleOptionViewItem>

#include <gtest/gtest.h>

namespace {

TEST(MultilinedDelegate, GivesEveryItemTheSameSize)
{
    QStandardItemModel model(1, 2);
    model.setItem(0, 0, new QStandardItem("one\ntwo\nthree\nfour\nfive"));
    const MultilinedDelegate delegate;
    for (const QModelIndex& index : {model.index(0, 0), model.index(0, 1), QModelIndex()}) {
        EXPECT_EQ(delegate.sizeHint(QStyleOptionViewItem(), index), QSize(120, 40));
    }
}

} // namespace
