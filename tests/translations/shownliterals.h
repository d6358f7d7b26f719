#pragma once

#include <QString>
#include <QStringList>

namespace testing_support {

/// The words in a source that are given to a widget as they stand, without being looked up in a
/// translation: what a statement with a call such as setText("Ready") or new QLabel("Ready") has in
/// quotes outside of tr(). Words are two letters that follow each other.
///
/// It sees what stands in the statement itself, not what comes there by a variable.
QStringList shownLiterals(const QString& source);

} // namespace testing_support
