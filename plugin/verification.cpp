#include <QtGlobal>

// What a launcher may ask before it loads the plugin: the Qt that it was built for.
extern "C" Q_DECL_EXPORT const char* qt_plugin_query_verification_data()
{
#ifdef QT_NO_DEBUG
#define WAVEFORM_QT_DEBUG "false"
#else
#define WAVEFORM_QT_DEBUG "true"
#endif
    return "pattern=QT_PLUGIN_VERIFICATION_DATA\n"
           "version=" QT_VERSION_STR "\n"
           "debug=" WAVEFORM_QT_DEBUG "\n"
           "buildkey=" WAVEFORM_BUILD_KEY;
}
