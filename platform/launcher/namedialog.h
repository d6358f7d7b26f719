#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;

/// Asks for the name of a file. "Save" can be pressed only while the name is usable.
class NameDialog : public QDialog
{
    Q_OBJECT

public:
    NameDialog(const QString& proposed, QWidget* parent);

    [[nodiscard]] QString name() const;

private:
    void checkName();

    QLineEdit* edit;
    QPushButton* saveButton;
};
