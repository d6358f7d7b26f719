#pragma once

#include "platform/launcher/basepopupwindow.h"

class QButtonGroup;

/// What can be done with a row of the reflectograms table. Closes before it tells the choice.
class ReflTableMenu : public BasePopupWindow
{
    Q_OBJECT

public:
    enum Id
    {
        SetAsMain,
        Delete,
        DeleteAll
    };

    explicit ReflTableMenu(QWidget* parent = nullptr);

    using BasePopupWindow::show;

public slots:
    /// Shows the menu at a global position, as high as its visible buttons need.
    void show(QPoint pos);
    void setButtonHidden(bool hidden, int idx);
    void setButtonEnabled(bool enabled, int idx);
    void buttonClicked(int id);

signals:
    void clicked(int id);

private:
    void createButton(int id, const QString& text);

    QButtonGroup* buttons;
    int visibleButtons = 0;
};
