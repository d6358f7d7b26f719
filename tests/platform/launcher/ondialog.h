#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

namespace testing_support {

/// Does with the next dialog, once it is up, what a person would do.
template <typename Deed>
void onDialog(Deed deed)
{
    QTimer::singleShot(0, qApp, [deed] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        deed(*dialog);
    });
}

} // namespace testing_support
