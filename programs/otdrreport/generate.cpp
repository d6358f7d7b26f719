#include "programs/otdrreport/generate.h"

#include "platform/otdr/reflectogram.h"
#include "platform/otdr/wholefile.h"
#include "programs/otdrreport/page.h"
#include "programs/otdrreport/picture.h"
#include "programs/otdrreport/report.h"
#include "programs/otdrreport/templatevalues.h"

#include <QFileInfo>

namespace otdrreport {

QString generate(const Request& request)
{
    const Reflectogram refl(request.trace);
    const auto state = refl.state();
    if (!state || !state->trace) {
        return refl.error();
    }
    if (!state->file) {
        return QString("%1: not a trace file (.sor)").arg(request.trace);
    }
    const Report report = reportOf(*state);
    const QByteArray png = pictureOf(refl, report);
    if (png.isEmpty()) {
        return "the picture cannot be drawn";
    }
    const auto page = pageOf(templateValues(report, png, QFileInfo(request.picture()).fileName()),
                             request.templateFile);
    if (!page) {
        return QString::fromStdString(page.error().message);
    }
    const QString problem = OTDR::writeWholeFile(request.picture(), png);
    return problem.isEmpty() ? OTDR::writeWholeFile(request.html, *page) : problem;
}

} // namespace otdrreport
