#include "app/language.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>

// The macro wants to stand outside of any namespace.
static void makeTranslationsKnown()
{
    Q_INIT_RESOURCE(translations);
}

namespace {

constexpr char kDirectory[] = ":/translations";
constexpr char kSource[] = "en";
constexpr char kPrefix[] = "waveform_";

/// Whether the system asks for no language. Then the list of languages in its environment does not
/// count, as with every other program.
bool isMute()
{
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const QByteArray locale = qgetenv(name);
        if (!locale.isEmpty()) {
            const QByteArray language = locale.split('.').first();
            return language == "C" || language == "POSIX";
        }
    }
    return true;
}

QString asked(const QLocale& system)
{
    return isMute() ? kSource : Language::chosen(system.uiLanguages());
}

} // namespace

Language::Language(const QString& code)
{
    makeTranslationsKnown();
    const QLocale system = QLocale::system();
    const QString language = code.isEmpty() ? asked(system) : code;
    // Numbers are the system's, whether or not there are words in its language.
    QLocale numbers = code.isEmpty() ? system : QLocale(code);
    numbers.setNumberOptions(QLocale::OmitGroupSeparator);
    QLocale::setDefault(numbers);
    if (language != kSource) {
        install("qtbase_" + language, QLibraryInfo::location(QLibraryInfo::TranslationsPath));
        install(kPrefix + language, kDirectory); // is asked first
    }
}

Language::~Language()
{
    for (const auto& translator : translators) {
        QCoreApplication::removeTranslator(translator.get());
    }
    QLocale::setDefault(before);
}

QStringList Language::known()
{
    makeTranslationsKnown();
    QStringList codes = {kSource};
    const QStringList files = QDir(kDirectory).entryList(QDir::Files, QDir::Name);
    for (const QString& file : files) {
        // Not by a pattern, which costs every start a regular expression.
        if (file.startsWith(kPrefix) && file.endsWith(".qm")) {
            codes << file.section('.', 0, 0).mid(int(qstrlen(kPrefix)));
        }
    }
    return codes;
}

QString Language::chosen(const QStringList& asked)
{
    const QStringList codes = known();
    for (const QString& tag : asked) {
        QString language = QString(tag).replace('-', '_').section('_', 0, 0).toLower();
        if (codes.contains(language)) {
            return language;
        }
    }
    return kSource;
}

void Language::install(const QString& name, const QString& dir)
{
    auto translator = std::make_unique<QTranslator>();
    // Qt's own may not be there; its few words are English then.
    if (translator->load(name, dir)) {
        QCoreApplication::installTranslator(translator.get());
        translators.push_back(std::move(translator));
    }
}
