#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <variant>
#include <vector>

/// What the command line asks for.
struct Options
{
    /// A configuration value for this run.
    struct Override
    {
        QString section;
        QString key;
        QVariant value;
    };

    QStringList files; ///< to open
    QString demoDir; ///< where an unattended measurement leaves its results; empty for none
    QString screenshot; ///< file for a picture of the window with the files; empty for none
    QSize size = QSize(1280, 800); ///< of that picture
    QStringList panels; ///< to show in it
    QString language; ///< code of the one to speak; empty for the system's
    std::vector<Override> overrides;
};

/// A command line that cannot be carried out, or one that only asks for a text.
struct OptionsText
{
    QString text;
    int exitCode = 0;
};

/// Reads the arguments, the program's name first.
[[nodiscard]] std::variant<Options, OptionsText> parseOptions(const QStringList& arguments);
