#include "platform/launcher/filedialog.h"

#include "platform/launcher/opendialog.h"

#include <QApplication>
#include <QPointer>

QString FileDialog::getOpenFileName(QWidget* parent, const QString& title, const QString& dir,
                                    const QString& filter)
{
    return getOpenFileNames(parent, {title, {{QString(), dir}}, filter, 1}).value(0);
}

QStringList FileDialog::getOpenFileNames(QWidget* parent, const Request& request)
{
    QWidget* below = parent != nullptr ? parent : QApplication::activeWindow();
    // On the heap and watched: the parent may go while the user chooses.
    const QPointer<OpenDialog> dialog = new OpenDialog(request, below);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (dialog.isNull()) {
        return {};
    }
    const QStringList files = dialog->files();
    delete dialog.data();
    return accepted ? files : QStringList();
}
