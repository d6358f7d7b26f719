#include "platform/otdr/wholefile.h"

#include "platform/otdr/core/atomicfile.h"

#include <QFile>

#include <gsl/span>

namespace OTDR {

QString writeWholeFile(const QString& path, const QByteArray& bytes)
{
    const auto written = otdr::writeFileAtomically(
        QFile::encodeName(path).toStdString(),
        gsl::as_bytes(gsl::make_span(bytes.constData(), static_cast<std::size_t>(bytes.size()))));
    return written ? QString() : QString::fromStdString(written.error().message);
}

void removeLeftovers(const QString& directory)
{
    otdr::removeLeftovers(QFile::encodeName(directory).toStdString());
}

} // namespace OTDR
