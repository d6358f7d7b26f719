#include "app/filename.h"

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace filename {

namespace {

constexpr ushort kEscape = 0xDC00;
constexpr ushort kFirstByte = 0x80;
constexpr ushort kLastByte = 0xFF;

bool isEscaped(QChar character)
{
    return character.unicode() >= kEscape + kFirstByte
        && character.unicode() <= kEscape + kLastByte;
}

QString escaped(const QByteArray& raw)
{
    QString name;
    for (const char byte : raw) {
        const auto code = static_cast<uchar>(byte);
        name += QChar(static_cast<ushort>(code < kFirstByte ? code : kEscape + code));
    }
    return name;
}

} // namespace

QString fromRaw(const QByteArray& raw)
{
    const QString name = QFile::decodeName(raw);
    return QFile::encodeName(name) == raw ? name : escaped(raw);
}

bool isText(const QString& name)
{
    for (int i = 0; i < name.size(); ++i) {
        if (name.at(i).isHighSurrogate() && i + 1 < name.size()) {
            ++i; // with the low one that belongs to it
        } else if (isEscaped(name.at(i))) {
            return false;
        }
    }
    return true;
}

QByteArray toRaw(const QString& name)
{
    if (isText(name)) {
        return QFile::encodeName(name);
    }
    QByteArray raw;
    QString text; // between two bytes that are none
    for (const QChar character : name) {
        if (isEscaped(character)) {
            raw += QFile::encodeName(text) + static_cast<char>(character.unicode() - kEscape);
            text.clear();
        } else {
            text += character;
        }
    }
    return raw + QFile::encodeName(text);
}

QString shown(const QString& name)
{
    if (isText(name)) {
        return name;
    }
    const QByteArray raw = toRaw(name);
    QString guess = QString::fromUtf8(raw);
    if (guess.contains(QChar::ReplacementCharacter)) {
        guess = QString::fromLatin1(raw);
    }
    const auto cannotBeWritten = [](QChar character) {
        return !character.isPrint() || QFile::decodeName(QFile::encodeName(character)) != character;
    };
    std::replace_if(guess.begin(), guess.end(), cannotBeWritten, QChar('_'));
    return guess;
}

QString absolute(const QString& name)
{
    if (QDir::isAbsolutePath(name)) {
        return name;
    }
    std::error_code none;
    return fromRaw(QByteArray::fromStdString(std::filesystem::current_path(none).string())) + '/'
        + name;
}

Dropped dropped(const QMimeData& data)
{
    Dropped result;
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls) {
        if (url.isLocalFile()) {
            // By its bytes: as a text it would have lost what is none.
            result.files << fromRaw(
                QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
        } else {
            result.elsewhere << url.toDisplayString();
        }
    }
    return result;
}

} // namespace filename
