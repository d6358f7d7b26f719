#include "platform/launcher/filenameconverter.h"

#include <QRegularExpression>
#include <QTextBoundaryFinder>
#include <QVector>

namespace {

// The two separators, and what FAT forbids besides them.
const char32_t kForbidden[] = U"/\\:*?\"<>|";

bool isForbidden(uint character)
{
    for (const char32_t* it = kForbidden; *it != 0; ++it) {
        if (*it == character) {
            return true;
        }
    }
    return false;
}

bool isDropped(uint character)
{
    const bool turnsDirection = (character >= 0x202a && character <= 0x202e)
        || (character >= 0x2066 && character <= 0x2069) || character == 0x200e
        || character == 0x200f;
    const bool isSeparator = character == 0x2028 || character == 0x2029;
    const QChar::Category category = QChar::category(character);
    return turnsDirection || isSeparator || category == QChar::Other_Control
        || category == QChar::Other_Surrogate || category == QChar::Other_NotAssigned
        || character == 0xfeff;
}

QString withoutDangerous(const QString& typed)
{
    QVector<uint> kept;
    const QVector<uint> characters = typed.toUcs4();
    for (const uint character : characters) {
        if (isDropped(character)) {
            continue;
        }
        kept << (isForbidden(character) ? uint('_') : character);
    }
    return QString::fromUcs4(kept.constData(), kept.size());
}

bool isTrimmed(QChar character)
{
    return character == QLatin1Char('.') || character.isSpace();
}

QString trimmed(const QString& name)
{
    int first = 0;
    int end = name.size();
    while (first < end && isTrimmed(name.at(first))) {
        ++first;
    }
    while (end > first && isTrimmed(name.at(end - 1))) {
        --end;
    }
    return name.mid(first, end - first);
}

bool isDeviceName(const QString& name)
{
    static const QRegularExpression devices(QStringLiteral("^(con|prn|aux|nul|com[1-9]|lpt[1-9])$"),
                                            QRegularExpression::CaseInsensitiveOption);
    return devices.match(name.section(QLatin1Char('.'), 0, 0).trimmed()).hasMatch();
}

QString cut(const QString& name)
{
    if (name.toUtf8().size() <= FileNameConverter::kMaxBytes) {
        return name;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
    int end = 0;
    int bytes = 0;
    for (int next = finder.toNextBoundary(); next > 0; next = finder.toNextBoundary()) {
        bytes += name.mid(end, next - end).toUtf8().size();
        if (bytes > FileNameConverter::kMaxBytes) {
            break;
        }
        end = next;
    }
    return name.left(end);
}

} // namespace

QString FileNameConverter::convert(const QString& typed) const
{
    QString name = trimmed(withoutDangerous(typed));
    if (isDeviceName(name)) {
        name.prepend(QLatin1Char('_'));
    }
    return trimmed(cut(name));
}
