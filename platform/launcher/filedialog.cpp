#include "platform/launcher/filedialog.h"

#include "platform/launcher/opendialog.h"
#include "platform/launcher/windowbelow.h"
#include "platform/launcher/zulauncherconfig.h"

#include <QPointer>

QString FileDialog::getOpenFileName(QWidget* parent, const QString& title, const QString& dir,
                                    const QString& filter)
{
    return getOpenFileNames(parent, {title, {{QString(), dir}}, filter}).value(0);
}

QStringList FileDialog::getOpenFileNames(QWidget* parent, const Request& request)
{
    QWidget* below = parent != nullptr ? parent : windowBelow();
    // On the heap and watched: the parent may go while the user chooses.
    const QPointer<OpenDialog> dialog = new OpenDialog(request, below);
    ZuLauncherConfig lastDir("paths", request.rememberedAs);
    if (!request.rememberedAs.isEmpty()) {
        dialog->startAt(lastDir.toString());
    }
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (dialog.isNull()) {
        return {};
    }
    const QStringList files = dialog->files();
    if (accepted && !request.rememberedAs.isEmpty() && lastDir.toString() != dialog->directory()) {
        lastDir.store(dialog->directory());
    }
    delete dialog.data();
    return accepted ? files : QStringList();
}
