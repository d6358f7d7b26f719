#pragma once

#include "platform/launcher/controlbottompanel.h"

class QButtonGroup;
class QPushButton;

/// The bar of the measurement between two markers: two ways to measure, and a button that fetches
/// the markers.
///
/// Its being shown is what shows the markers.
class MeasView : public ControlBottomPanel
{
    Q_OBJECT

public:
    enum Modes
    {
        TwoPoints,
        TwoPointsLsa ///< with a least-squares line beside the markers
    };
    Q_ENUM(Modes)

    explicit MeasView(QWidget* parent = nullptr);

    [[nodiscard]] bool isUsingLsa() const { return usingLSA; }

public slots:
    /// Does as a press on the mode's button.
    void setMode(MeasView::Modes mode);
    void setMode(int mode);

signals:
    void usingLSAChanged(bool used);
    void visibility2pChanged(bool visible);
    void visibilityChanged(bool visible);
    void modeChanged(int mode);
    void modeChanged(MeasView::Modes mode);
    void needMarkersOnScreen();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

    /// Lets Tab reach both modes: in a group Qt leaves it one button and wants arrow keys for the
    /// others, which zoom the plot here.
    bool focusNextPrevChild(bool next) override;

private slots:
    void onButtonClicked(int id);

private:
    QPushButton* addButton(const QString& text);

    QButtonGroup* buttons;
    bool usingLSA = false;
    bool visible2p = false;
    int mode = TwoPoints;
};
