#pragma once

#include <QString>
#include <QTemporaryDir>

#include <memory>

/// Makes files openable whose names are no text, by links to them under names that are.
///
/// The links last as long as this object.
class LinkedNames
{
public:
    /// \param place the directory for the links
    explicit LinkedNames(QString place);

    /// A name under which Qt opens the file: the name itself where that is a text. The link bears
    /// the name that is shown of the file; the same file has the same link.
    [[nodiscard]] QString openable(const QString& name);

private:
    QString place;
    std::unique_ptr<QTemporaryDir> dir; ///< made when it is first wanted
    QHash<QString, QString> links;
};
