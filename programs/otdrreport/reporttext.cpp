#include "programs/otdrreport/reporttext.h"

#include <QVector>

#include <cmath>

namespace otdrreport {

namespace {

const QChar kMinus(0x2212);
const QChar kThinBlank(0x202f); // does not break the line
const QChar kDash(0x2013);

/// Four digits read well as they are.
constexpr int kShortestGrouped = 5;

/// The digits before the point in groups of three.
QString grouped(QString number)
{
    const int point = number.indexOf('.');
    const int whole = point < 0 ? number.size() : point;
    if (whole < kShortestGrouped) {
        return number;
    }
    for (int at = whole - 3; at > 0; at -= 3) {
        number.insert(at, kThinBlank);
    }
    return number;
}

} // namespace

QString printable(const QString& text)
{
    QVector<uint> characters = text.toUcs4();
    for (uint& character : characters) {
        if (!QChar::isPrint(character)) {
            character = ' ';
        }
    }
    return QString::fromUcs4(characters.constData(), characters.size()).simplified();
}

QString printable(const std::string& text)
{
    return printable(QString::fromLatin1(text.data(), static_cast<int>(text.size())));
}

QString shown(double value, int decimals)
{
    if (!std::isfinite(value)) {
        return dash();
    }
    const QString digits = grouped(QString::number(std::abs(value), 'f', decimals));
    const bool isZero = digits.count('0') + digits.count('.') == digits.size();
    return value < 0.0 && !isZero ? kMinus + digits : digits;
}

QString dash()
{
    return kDash;
}

} // namespace otdrreport
