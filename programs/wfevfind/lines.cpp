#include "programs/wfevfind/lines.h"

namespace evfind {

QByteArray linesOf(const Findings& found)
{
    QByteArray lines;
    for (const Event& event : found.events) {
        if (event.type != Event::SpanStart) {
            lines += QByteArray(1, event.type) + " = "
                + QByteArray::number(static_cast<qlonglong>(found.sampleOf(event))) + '\n';
        }
    }
    return lines;
}

} // namespace evfind
