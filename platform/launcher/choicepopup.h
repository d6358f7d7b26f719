#pragma once

#include "platform/launcher/basepopupwindow.h"

#include <QString>
#include <QVector>

class QPushButton;

/// A pop-up with one large button for each of a few choices, all of them in sight at once.
class ChoicePopup : public BasePopupWindow
{
    Q_OBJECT

public:
    struct Choice
    {
        int id;
        QString text;
    };

    /// \param current the id of the choice that is in force; it is marked and has the focus at
    /// first. Where none of them is in force, the first has the focus.
    ChoicePopup(const QVector<Choice>& choices, int current, QWidget* parent = nullptr);

signals:
    /// A button was pressed; the pop-up is closed already.
    void chosen(int id);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QPushButton* newButton(const Choice& choice);

    // No button group: Qt would let Tab reach no other button than the checked one.
    QPushButton* initial = nullptr; ///< has the focus at first
    int current;
};
