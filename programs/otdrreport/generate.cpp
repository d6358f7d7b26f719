#include "programs/otdrreport/generate.h"

#include "platform/otdr/core/atomicfile.h"
#include "platform/otdr/reflectogram.h"
#include "programs/otdrreport/page.h"
#include "programs/otdrreport/picture.h"
#include "programs/otdrreport/report.h"
#include "programs/otdrreport/templatevalues.h"

#include <QFile>
#include <QFileInfo>

#include <gsl/span>

namespace otdrreport {

namespace {

/// Why a file could not be written; empty where it was.
QString write(const QString& path, const QByteArray& bytes)
{
    const auto written = otdr::writeFileAtomically(
        QFile::encodeName(path).toStdString(),
        gsl::as_bytes(gsl::make_span(bytes.constData(), static_cast<std::size_t>(bytes.size()))));
    return written ? QString() : QString::fromStdString(written.error().message);
}

} // namespace

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
    const QString problem = write(request.picture(), png);
    return problem.isEmpty() ? write(request.html, *page) : problem;
}

} // namespace otdrreport
