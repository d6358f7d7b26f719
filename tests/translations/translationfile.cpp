#include "tests/translations/translationfile.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>

namespace testing_support {

namespace {

Message readMessage(QXmlStreamReader& xml, const QString& context)
{
    Message message;
    message.context = context;
    while (xml.readNextStartElement()) {
        if (xml.name() == "source") {
            message.source = xml.readElementText();
        } else if (xml.name() == "translation") {
            message.type = xml.attributes().value("type").toString();
            message.translation = xml.readElementText(QXmlStreamReader::IncludeChildElements);
            message.isPlural = message.source.contains("%n");
        } else {
            xml.skipCurrentElement();
        }
    }
    return message;
}

/// The places for values in a text, in the order of their numbers.
QStringList places(const QString& text)
{
    static const QRegularExpression place("%(L?\\d{1,2}|n)");
    QStringList found;
    for (auto match = place.globalMatch(text); match.hasNext();) {
        found << match.next().captured();
    }
    found.sort();
    return found;
}

int shortcuts(const QString& text)
{
    return QString(text).remove("&&").count('&');
}

QString blanksInFront(const QString& text)
{
    const auto first = std::find_if(text.begin(), text.end(),
                                    [](QChar character) { return !character.isSpace(); });
    return text.left(static_cast<int>(first - text.begin()));
}

QString reversed(QString text)
{
    std::reverse(text.begin(), text.end());
    return text;
}

QString faultOf(const Message& message)
{
    if (!message.type.isEmpty()) {
        return message.type;
    }
    if (message.translation.isEmpty()) {
        return "not translated";
    }
    if (!message.isPlural && places(message.source) != places(message.translation)) {
        return "other places for values";
    }
    if (shortcuts(message.source) != shortcuts(message.translation)) {
        return "a shortcut too many or too few";
    }
    if (blanksInFront(message.source) != blanksInFront(message.translation)
        || blanksInFront(reversed(message.source))
            != blanksInFront(reversed(message.translation))) {
        return "other blanks at an end";
    }
    return {};
}

} // namespace

QVector<Message> messagesOf(const QByteArray& content)
{
    QVector<Message> messages;
    QString context;
    QXmlStreamReader xml(content);
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == "name") {
            context = xml.readElementText();
        } else if (xml.isStartElement() && xml.name() == "message") {
            messages << readMessage(xml, context);
        }
    }
    return messages;
}

QStringList faultsOf(const QVector<Message>& messages)
{
    QStringList faults;
    for (const Message& message : messages) {
        const QString fault = faultOf(message);
        if (!fault.isEmpty()) {
            faults << message.context + ": \"" + message.source + "\": " + fault;
        }
    }
    return faults;
}

} // namespace testing_support
