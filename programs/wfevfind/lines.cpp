#include "programs/wfevfind/lines.h"

namespace evfind {

QByteArray linesOf(const Findings& found)
{
    QByteArray lines;
    for (std::size_t i = 0; i < found.samples.size(); ++i) {
        const Event& event = found.events[static_cast<int>(i)];
        if (event.type != Event::SpanStart) {
            lines += QByteArray(1, event.type) + " = "
                + QByteArray::number(static_cast<qlonglong>(found.samples[i])) + '\n';
        }
    }
    return lines;
}

} // namespace evfind
