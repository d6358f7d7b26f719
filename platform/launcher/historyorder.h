#pragma once

#include <QVector>

/// The order in which to offer entries: the most used ones first, at most mostUsed of them, then
/// the others as they stand.
///
/// \param uses how often each entry was chosen; one that never was is not moved up
/// \return the entries' indices; of two used as often the earlier one leads
[[nodiscard]] QVector<int> historyOrder(const QVector<int>& uses, int mostUsed);
