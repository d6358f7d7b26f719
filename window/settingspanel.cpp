#include "window/settingspanel.h"

#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/historycombo.h"
#include "platform/launcher/linedlabel.h"
#include "platform/launcher/zuconfigmodel.h"

#include <algorithm>
#include <iterator>

namespace Waveform {

namespace {

constexpr int kBoxWidth = 140;

} // namespace

SettingsPanel::SettingsPanel(ControlBottomPanel* panel, QObject* parent)
    : QObject(parent)
    , panel(panel)
{
}

void SettingsPanel::initSettings(ZuConfigModel* config)
{
    const QString revision = config->value("CardInfo", "HardwareRevision").toString();
    combos << newComboBox(config, timeChoices());
    pulse = newComboBox(config, pulseChoices(startsWithLongestPulse(revision)));
    combos << pulse;
    combos << newComboBox(config, distanceChoices());
    combos << newComboBox(config, wavelengthChoices());
    config->throwData({"duration", "pulse", "distance", "wavelength"});
}

HistoryCombo* SettingsPanel::newComboBox(ZuConfigModel* config, const SettingChoices& choices) const
{
    auto* combo = new HistoryCombo(nullptr, false); // the panel takes it over
    combo->history = false;
    combo->historyCount = 1;
    combo->setWhatsThis(choices.title);
    combo->addItems(choices.labels, choices.values);
    combo->setCurrentIndex(0);
    // Stored by hand or given for this run: what is measured is what the box has to show.
    combo->setWording(
        [key = choices.key](const QVariant& value) { return foreignLabel(key, value); });
    ZuSetting* setting = config->setting(choices.key, "MeasParams");
    connect(setting, SIGNAL(changed( QVariant )), combo, SLOT(setCurrentIndexByData( QVariant )));
    connect(combo, SIGNAL(currentDataChanged( QVariant )), setting, SLOT(tryChange( QVariant )));
    panel->prependWidget(LinedLabel::createLabeledWidget(combo), kBoxWidth, 0, {});
    return combo;
}

QWidgetList SettingsPanel::boxes() const
{
    QWidgetList boxes;
    std::copy(combos.rbegin(), combos.rend(), std::back_inserter(boxes));
    return boxes;
}

void SettingsPanel::setEnabled(bool enabled)
{
    for (HistoryCombo* combo : qAsConst(combos)) {
        combo->setEnabled(enabled);
    }
}

void SettingsPanel::onChangeCardRevision(double rev)
{
    if (pulse == nullptr) {
        return;
    }
    const int index = pulse->findData(kLongestPulse_ns);
    const bool wanted = hasLongestPulse(rev);
    if (index >= 0 && !wanted) {
        pulse->removeItem(index);
    } else if (index < 0 && wanted) {
        pulse->addItem(longestPulseLabel(), kLongestPulse_ns);
    }
}

} // namespace Waveform
