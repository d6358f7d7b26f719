#pragma once

#include <QString>
#include <QTimer>

/// Shows that work goes on: a text followed by a growing and vanishing run of points.
///
/// Every text has the same number of characters.
class TextualAnimator : public QTimer
{
    Q_OBJECT

public:
    explicit TextualAnimator(QObject* parent = nullptr);
    TextualAnimator(QString text, int pointsCount, QObject* parent = nullptr);

public slots:
    /// Starts and tells the first text at once. The base's slots of these names are not virtual:
    /// call them on this type.
    void start(int msecs);
    void start();
    void stop();
    void setText(QString text);
    void setPointsCount(int pointsCount);

signals:
    void newText(QString text);

private slots:
    QString sendNewText();

private:
    int pointsCount = 0;
    int current = 0; ///< points shown last
    QString text;
};
