#pragma once

#include <QDialog>

class QLabel;

/// A window that is shown while the user has to wait: takes the input of all others and cannot be
/// closed by hand.
class WaitWnd : public QDialog
{
    Q_OBJECT

public:
    explicit WaitWnd(QWidget* parent = nullptr);

    void setText(const QString& text);

    /// Neither Escape nor the window's cross end the wait: only whoever showed it does, with
    /// hide().
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QLabel* label;
};
