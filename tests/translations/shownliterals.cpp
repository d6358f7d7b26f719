#include "tests/translations/shownliterals.h"

#include <QRegularExpression>

namespace testing_support {

namespace {

/// Where the bracket that is open at this place is closed; texts in quotes may hold brackets.
int closing(const QString& source, int open)
{
    int depth = 0;
    bool quoted = false;
    for (int i = open; i < source.size(); ++i) {
        const QChar character = source.at(i);
        if (character == '\\') {
            ++i;
        } else if (character == '"') {
            quoted = !quoted;
        } else if (!quoted && (character == '(' || character == '{')) {
            ++depth;
        } else if (!quoted && (character == ')' || character == '}') && --depth == 0) {
            return i;
        }
    }
    return source.size();
}

/// The text without what begins so, up to the end of its brackets.
QString withoutCalls(QString text, const QRegularExpression& call)
{
    for (auto match = call.match(text); match.hasMatch(); match = call.match(text)) {
        text.remove(match.capturedStart(),
                    closing(text, match.capturedEnd() - 1) + 1 - match.capturedStart());
    }
    return text;
}

} // namespace

QStringList shownLiterals(const QString& source)
{
    static const QRegularExpression shows(
        R"(\b(set(Text|PlainText|Html|ToolTip|WindowTitle|Title|StatusTip|WhatsThis|PlaceholderText)"
        R"(|InformativeText|AccessibleName|AccessibleDescription|LabelText|Format|HeaderData)"
        R"(|ButtonText|TabText|Label)|(add|insert)(Item|Items|Button|Action|Tab|Row|Menu))"
        R"(|drawText|showText|showWarning|showNotification|show|tell|fit|setFailure|noteTrouble)"
        R"(|information|warning|critical|question)"
        R"(|(QLabel|LinedLabel|QPushButton|TouchButton|QToolButton|QCheckBox|QAction|QGroupBox)"
        R"(|QMessageBox|QwtText)(\s+\w+)?)\s*[({])");
    // What is looked up, what is said to programmers, and names that nobody reads.
    static const QRegularExpression translates(
        R"re(\b(tr|translate|QStringLiteral|QLatin1String|qDebug|qCritical|qWarning|Words::tr|SIGNAL|SLOT)\s*\()re");
    static const QRegularExpression words(R"re("((?:[^"\\]|\\.)*\p{L}{2}(?:[^"\\]|\\.)*)")re");

    QStringList found;
    for (auto call = shows.globalMatch(source); call.hasNext();) {
        const QRegularExpressionMatch match = call.next();
        const int open = match.capturedEnd() - 1;
        const QString arguments =
            withoutCalls(source.mid(open, closing(source, open) + 1 - open), translates);
        for (auto word = words.globalMatch(arguments); word.hasNext();) {
            found << match.captured(1) + ": " + word.next().captured(1);
        }
    }
    return found;
}

} // namespace testing_support
