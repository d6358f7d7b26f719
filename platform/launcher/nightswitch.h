#pragma once

#include "platform/launcher/touchbutton.h"

class ZuConfigModel;

/// A button with a moon that changes between the colours of the day and of the night; pressed in
/// at night.
class NightSwitch : public TouchButton
{
    Q_OBJECT

public:
    explicit NightSwitch(QWidget* parent = nullptr);
    ~NightSwitch() override;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ZuConfigModel* config;
};
