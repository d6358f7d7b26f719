#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace testing_support {

/// A text and its translation.
struct Message
{
    QString context;
    QString source;
    QString translation;
    QString
        type; ///< why it does not count, such as "unfinished" or "obsolete"; empty for a good one
    bool isPlural = false; ///< several forms, which are not looked at
};

/// The messages of a file of Qt Linguist.
QVector<Message> messagesOf(const QByteArray& xml);

/// What is wrong with them, one a line: a translation that is missing or does not count, and one
/// whose places for values, shortcut, or blanks at either end differ from those of its source.
QStringList faultsOf(const QVector<Message>& messages);

} // namespace testing_support
