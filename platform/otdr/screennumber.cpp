#include "platform/otdr/screennumber.h"

namespace screennumber {

QLocale locale()
{
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale;
}

QString fixed(double value, int decimals)
{
    return locale().toString(value, 'f', decimals);
}

QString general(double value)
{
    constexpr int kDigits = 6;
    return locale().toString(value, 'g', kDigits);
}

QString fromCode(const QString& number)
{
    return QString(number).replace('.', locale().decimalPoint());
}

} // namespace screennumber
