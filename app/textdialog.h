#pragma once

#include <QDialog>

class QHBoxLayout;
class QPushButton;
class QTextBrowser;

/// A page to read, with buttons below: scrolled by touch, wheel and keys; Escape closes it.
class TextDialog : public QDialog
{
    Q_OBJECT

public:
    TextDialog(const QString& title, QWidget* parent);

    /// The page in Qt's rich text; what is not the application's own words is escaped in it.
    void setPage(const QString& markup);

    /// A further button, before the one that closes.
    QPushButton* addButton(const QString& text);

protected:
    /// Takes most of the window below.
    void showEvent(QShowEvent* event) override;

private:
    QTextBrowser* page;
    QHBoxLayout* buttons;
};
