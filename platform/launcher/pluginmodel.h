#pragma once

#include <QObject>
#include <QString>

/// The part of a plugin that works: something that can be started and stopped.
class PluginModel : public QObject
{
    Q_OBJECT

public:
    explicit PluginModel(QObject* parent = nullptr);

    [[nodiscard]] virtual bool running() const = 0;

    /// \param mode left to the model
    /// \return 0 when the work was started, negative where it was not
    virtual int start(unsigned int mode) = 0;

    /// Asks for the end of the work and does not wait for it. \return 0, or negative where it could
    /// not be asked
    virtual int stop(const QString& reason) = 0;
};
