#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

/// Asks for the name of a file, with keys on the screen for those who have no others. "Save" can be
/// pressed only while the name is usable; a line says why it is not, or how it will be changed.
class NameDialog : public QDialog
{
    Q_OBJECT

public:
    NameDialog(const QString& proposed, QWidget* parent);

    [[nodiscard]] QString name() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void checkName();

    QLineEdit* edit;
    QLabel* hint;
    QPushButton* saveButton;
};
