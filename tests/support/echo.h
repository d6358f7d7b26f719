#pragma once

#include <QCoreApplication>
#include <QTranslator>

namespace testing_support {

/// A language in which every text that is translated stands in angle brackets, as long as it lives.
class Echo : public QTranslator
{
public:
    Echo() { QCoreApplication::installTranslator(this); }

    ~Echo() override { QCoreApplication::removeTranslator(this); }

    [[nodiscard]] bool isEmpty() const override { return false; }

    [[nodiscard]] QString translate(const char* /*context*/, const char* text,
                                    const char* /*disambiguation*/, int /*n*/) const override
    {
        return '<' + QString(text) + '>';
    }
};

} // namespace testing_support
