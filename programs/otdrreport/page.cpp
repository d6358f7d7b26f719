#include "programs/otdrreport/page.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <QVector>

#include <grantlee/context.h>
#include <grantlee/engine.h>
#include <grantlee/outputstream.h>
#include <grantlee/safestring.h>
#include <grantlee/template.h>
#include <grantlee/templateloader.h>
#include <grantlee/util.h>

#include <optional>

// The macro wants to stand outside of any namespace.
static void makeBuiltInsKnown()
{
    Q_INIT_RESOURCE(report);
}

namespace otdrreport {

namespace {

using otdr::Error;
using otdr::ErrorCode;
using otdr::Result;

constexpr const char* kBuiltIn = ":/report/report.html";
constexpr const char* kScript = ":/report/report.js";
constexpr qint64 kLargestTemplate_bytes = 16 << 20;

/// A template that includes itself would go on until the stack ends.
constexpr int kMostLoads = 100;

std::optional<QByteArray> contents(const QString& path)
{
    QFile file(path);
    // A pipe of this name would keep the reader waiting.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)
        || file.size() > kLargestTemplate_bytes) {
        return {};
    }
    return file.readAll();
}

/// Escapes for text and for attributes in quotes of either kind; the library's own leaves double
/// quotes as they are.
class PageStream : public Grantlee::OutputStream
{
public:
    using OutputStream::OutputStream;

    [[nodiscard]] QString escape(const QString& input) const override
    {
        return input.toHtmlEscaped().replace('\'', "&#39;");
    }

    QSharedPointer<OutputStream> clone(QTextStream* stream) const override
    {
        return QSharedPointer<PageStream>::create(stream);
    }
};

/// Finds what a template includes or extends by its plain name: beside it, then among the built-in
/// ones.
class NeighbourLoader : public Grantlee::AbstractTemplateLoader
{
public:
    explicit NeighbourLoader(QString directory)
        : directory(std::move(directory))
    {
    }

    bool canLoadTemplate(const QString& name) const override { return !pathOf(name).isEmpty(); }

    Grantlee::Template loadByName(const QString& name,
                                  const Grantlee::Engine* engine) const override
    {
        loaded << engine->newTemplate(
            QString::fromUtf8(contents(pathOf(name)).value_or(QByteArray())), name);
        return loaded.last();
    }

    /// What went wrong in a template that was included; the one that includes it does not say.
    [[nodiscard]] QString error() const
    {
        if (loaded.size() >= kMostLoads) {
            return "includes go on and on";
        }
        for (const Grantlee::Template& part : loaded) {
            if (part->error() != Grantlee::NoError) {
                return part->errorString();
            }
        }
        return {};
    }

    QPair<QString, QString> getMediaUri(const QString& /*fileName*/) const override { return {}; }

private:
    [[nodiscard]] QString pathOf(const QString& name) const
    {
        if (loaded.size() >= kMostLoads || name.isEmpty() || QFileInfo(name).fileName() != name) {
            return {};
        }
        for (const QString& dir : {directory, QStringLiteral(":/report")}) {
            QString path = dir + "/" + name;
            if (!dir.isEmpty() && QFileInfo(path).isFile()) {
                return path;
            }
        }
        return {};
    }

    QString directory;
    mutable QVector<Grantlee::Template> loaded;
};

Error failure(const QString& name, const QString& reason)
{
    return {ErrorCode::Damaged, (name + ": " + reason.simplified()).toStdString()};
}

} // namespace

Result<QByteArray> pageOf(const QVariantHash& values, const QString& templateFile)
{
    makeBuiltInsKnown();
    const QString path = templateFile.isEmpty() ? QString(kBuiltIn) : templateFile;
    const std::optional<QByteArray> source = contents(path);
    if (!source) {
        return Error {ErrorCode::CannotOpen,
                      (templateFile + ": the template cannot be read").toStdString()};
    }
    const QByteArray script = contents(kScript).value_or(QByteArray());
    const QByteArray hash = QCryptographicHash::hash(script, QCryptographicHash::Sha256).toBase64();

    Grantlee::Engine engine;
    const auto loader = QSharedPointer<NeighbourLoader>::create(
        templateFile.isEmpty() ? QString() : QFileInfo(templateFile).path());
    engine.addTemplateLoader(loader);
    engine.setSmartTrimEnabled(true);
    const Grantlee::Template page = engine.newTemplate(QString::fromUtf8(*source), path);
    if (page->error() != Grantlee::NoError) {
        return failure(path, page->errorString());
    }
    Grantlee::Context context(values);
    context.insert("program", QVariantHash {{"version", WAVEFORM_VERSION}});
    context.insert("script", QVariant::fromValue(Grantlee::markSafe(QString::fromUtf8(script))));
    context.insert("script_sha256", QString::fromLatin1(hash));
    QString html;
    QTextStream text(&html);
    PageStream stream(&text);
    page->render(&stream, &context);
    text.flush();
    // What went wrong deepest says most.
    QString problem = loader->error();
    if (problem.isEmpty() && page->error() != Grantlee::NoError) {
        problem = page->errorString();
    }
    if (!problem.isEmpty()) {
        return failure(path, problem);
    }
    return html.toUtf8();
}

} // namespace otdrreport
