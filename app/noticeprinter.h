#pragma once

#include <QObject>
#include <QString>

class AbstractKeeper;

/// Prints on standard error what a keeper tells the user, where nobody is there to read it on the
/// screen.
class NoticePrinter : public QObject
{
    Q_OBJECT

public:
    explicit NoticePrinter(const AbstractKeeper* keeper);

public slots:
    /// One line, whatever lines the text has. What is told again is printed once.
    void print(const QString& text);

private:
    QString last;
};
