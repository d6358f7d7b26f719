#pragma once

#include <QLocale>

namespace testing_support {

/// Numbers on the screen are those of this locale, as long as it lives.
class InLocale
{
public:
    explicit InLocale(const QLocale& locale) { QLocale::setDefault(locale); }

    ~InLocale() { QLocale::setDefault(before); }

    InLocale(const InLocale&) = delete;
    InLocale& operator=(const InLocale&) = delete;

private:
    QLocale before;
};

} // namespace testing_support
