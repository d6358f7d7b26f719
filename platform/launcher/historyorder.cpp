#include "platform/launcher/historyorder.h"

#include <algorithm>
#include <numeric>

QVector<int> historyOrder(const QVector<int>& uses, int mostUsed)
{
    QVector<int> order(uses.size());
    std::iota(order.begin(), order.end(), 0);
    QVector<int> top = order;
    std::stable_sort(top.begin(), top.end(), [&](int a, int b) { return uses[a] > uses[b]; });
    const int usedAtAll =
        static_cast<int>(std::count_if(uses.begin(), uses.end(), [](int n) { return n > 0; }));
    top.resize(std::clamp(mostUsed, 0, usedAtAll));
    std::stable_partition(order.begin(), order.end(), [&](int i) { return top.contains(i); });
    std::copy(top.begin(), top.end(), order.begin());
    return order;
}
