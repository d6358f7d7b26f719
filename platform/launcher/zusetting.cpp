#include "platform/launcher/zusetting.h"

#include "platform/launcher/zuconfigmodel.h"

#include <limits>
#include <utility>

namespace {

/// The nearest whole number; 0 for a text that is no number, the limit for one that is too large.
int wholeNumber(const QVariant& value)
{
    const double number = value.toString().toDouble();
    constexpr double kLargest = std::numeric_limits<int>::max();
    return qRound(qBound(-kLargest, number, kLargest));
}

} // namespace

ZuSetting::ZuSetting(ZuConfigModel* model, QString key, QString section)
    : QObject(model)
    , model(model)
    , settingKey(std::move(key))
    , settingSection(std::move(section))
{
}

QString ZuSetting::key() const
{
    return settingKey;
}

QString ZuSetting::section() const
{
    return settingSection;
}

QVariant ZuSetting::value() const
{
    return model->value(settingSection, settingKey);
}

void ZuSetting::tryChange(const QVariant& value)
{
    model->offer(this, value);
}

void ZuSetting::tryChange(int value)
{
    model->offer(this, value);
}

void ZuSetting::tryChange(double value)
{
    model->offer(this, value);
}

void ZuSetting::tryChange(const QString& value)
{
    model->offer(this, value);
}

void ZuSetting::announce()
{
    const QVariant now = value();
    if (!now.isValid()) {
        return;
    }
    emit changed(now);
    emit changed(wholeNumber(now));
    emit changed(now.toString().toDouble());
    emit changed(now.toString());
}
