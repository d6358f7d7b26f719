#pragma once

#include "platform/otdr/core/result.h"

#include <QByteArray>
#include <QString>
#include <QVariantHash>

namespace otdrreport {

/// Fills a template with values and gives the page in UTF-8.
///
/// Without a name the built-in template is used. A template may include and extend others of its
/// own directory, and "report.html", the built-in one; nothing else. Values are escaped wherever
/// they are put into the page unless the template itself says otherwise. Beside the values there
/// are program.version, script (the text of the built-in page's script) and script_sha256. The
/// error names the template and what is wrong with it.
[[nodiscard]] otdr::Result<QByteArray> pageOf(const QVariantHash& values,
                                              const QString& templateFile);

} // namespace otdrreport
