#pragma once

#include <QString>

namespace testing_support {

/// Announces that the running test will cause one Qt warning or critical message that contains this
/// text.
///
/// A message at these levels that nobody announced fails the test, and so does one that was
/// announced and did not come.
void expectWarning(const QString& part);

/// All messages of the running test, debug level included, one a line, as the streams format them.
QString messages();

/// Whether a message that contains this text came in the running test.
bool logged(const QString& part);

} // namespace testing_support
