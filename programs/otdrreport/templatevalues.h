#pragma once

#include "programs/otdrreport/report.h"

#include <QByteArray>
#include <QVariantHash>

namespace otdrreport {

/// Everything that a template may ask for; docs/report-templates.md tells the names.
///
/// A value is a text ready to be shown, with a dash where it is not known; beside it stands the
/// plain number under a name that ends in its unit, and is left out where it is not known.
[[nodiscard]] QVariantHash templateValues(const Report& report, const QByteArray& png,
                                          const QString& pictureName);

} // namespace otdrreport
