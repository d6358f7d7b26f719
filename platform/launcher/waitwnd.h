#pragma once

#include <QDialog>

/// A window that is shown while the user has to wait: takes the input of all others and cannot be
/// closed by hand.
class WaitWnd : public QDialog
{
    Q_OBJECT

public:
    explicit WaitWnd(QWidget* parent = nullptr);

    /// Neither Escape nor the window's cross end the wait: only whoever showed it does, with
    /// hide().
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
};
