#include "platform/launcher/launcherlog.h"

Q_LOGGING_CATEGORY(launcherLog, "waveform.launcher")
