#pragma once

#include <QFont>
#include <QObject>

class LauncherStyle;
class ZuConfigModel;

/// Gives the application the launcher's look: style, font, and the palette for day or night as the
/// user has set it, "Display"/"night" of the launcher's configuration.
///
/// A change of the setting shows at once. At most one at a time, after the application object.
class Appearance : public QObject
{
    Q_OBJECT

public:
    explicit Appearance(QObject* parent = nullptr);
    ~Appearance() override;

    /// The launcher's font in the size of another one: families that come with the package, then
    /// what else there is. Their digits are all of one width, so that numbers in a column align.
    [[nodiscard]] static QFont textFont(const QFont& sizedAs);

    /// What a value of that setting says; one that is neither yes nor no is none for the night.
    [[nodiscard]] static bool meansNight(const QVariant& value);

private:
    void showLight(bool isNight);

    ZuConfigModel* config;
    LauncherStyle* style; ///< the application's
};
