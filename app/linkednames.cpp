#include "app/linkednames.h"

#include "app/filename.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

#include <utility>

LinkedNames::LinkedNames(QString place)
    : place(std::move(place))
{
}

QString LinkedNames::openable(const QString& name)
{
    if (filename::isText(name)) {
        return name;
    }
    const QString target = filename::absolute(name);
    if (links.contains(target)) {
        return links.value(target);
    }
    if (dir == nullptr) {
        dir = std::make_unique<QTemporaryDir>(place + "/names-XXXXXX");
    }
    const QString number = QString::number(links.size()); // two names may look the same
    QString link = dir->filePath(number + '/' + QFileInfo(filename::shown(name)).fileName());
    if (!dir->isValid() || !QDir(dir->path()).mkdir(number)
        || ::symlink(filename::toRaw(target).constData(), QFile::encodeName(link).constData())
            != 0) {
        return filename::shown(name); // which is not found, and told so
    }
    links.insert(target, link);
    return link;
}
