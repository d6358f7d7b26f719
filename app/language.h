#pragma once

#include <QLocale>
#include <QStringList>
#include <QTranslator>

#include <memory>
#include <vector>

/// The language of the user's texts and the form of the numbers on the screen, for as long as this
/// stands. Wants a core application, and goes before it.
class Language
{
public:
    /// \param code one of known(); empty for what the system asks for
    explicit Language(const QString& code = {});
    ~Language();

    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;

    /// The languages that there are words in, by their codes; English, which the sources speak, is
    /// the first.
    [[nodiscard]] static QStringList known();

    /// The first of the languages that somebody asks for which is known; English where none is.
    /// \param asked such as "ru-RU" or "pt_BR", the most wanted first
    [[nodiscard]] static QString chosen(const QStringList& asked);

private:
    void install(const QString& name, const QString& dir);

    QLocale before;
    std::vector<std::unique_ptr<QTranslator>> translators;
};
