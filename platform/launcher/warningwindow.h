#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QPushButton;

/// A message to the user that blocks nothing: plain text and one button to close it.
///
/// A further message that comes while one is shown is added below it, so that none is lost.
class WarningWindow : public QDialog
{
    Q_OBJECT

public:
    explicit WarningWindow(QWidget* parent = nullptr);

    using QDialog::show;

    /// All that is shown; empty while nothing is.
    [[nodiscard]] QString text() const;

public slots:
    void show(const QString& text);
    void show(const QString& text, const QString& title);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void fitText();
    void growAroundButton();

    QLabel* label;
    QPushButton* ok;
    QString message;
};
