#pragma once

#include "window/settingchoices.h"

#include <QList>
#include <QObject>
#include <QWidget>

class ControlBottomPanel;
class HistoryCombo;
class ZuConfigModel;

namespace Waveform {

/// The boxes on the bottom panel with which the user sets what is to be measured: averaging time,
/// pulse, distance range, wavelength.
///
/// Each is bound to its setting both ways: a choice is offered to the configuration, and what that
/// has in force is what the box shows. A value that no entry has leaves the box as it is.
class SettingsPanel : public QObject
{
    Q_OBJECT

public:
    /// \param panel takes the boxes over; must be there for initSettings()
    explicit SettingsPanel(ControlBottomPanel* panel, QObject* parent = nullptr);

    /// Builds the boxes and lets them show the values in force.
    void initSettings(ZuConfigModel* config);

    /// Time, pulse, distance, wavelength: from right to left on the panel.
    [[nodiscard]] const QList<HistoryCombo*>& settingCombos() const { return combos; }

    /// The same from left to right.
    [[nodiscard]] QWidgetList boxes() const;

    [[nodiscard]] HistoryCombo* pulseCombo() const { return pulse; }

    /// Whether the settings can be changed; during a run they cannot.
    void setEnabled(bool enabled);

public slots:
    /// Offers the longest pulse where the card can send it, and no longer where it cannot.
    void onChangeCardRevision(double rev);

private:
    HistoryCombo* newComboBox(ZuConfigModel* config, const SettingChoices& choices) const;

    ControlBottomPanel* panel;
    QList<HistoryCombo*> combos;
    HistoryCombo* pulse = nullptr;
};

} // namespace Waveform
