#include "window/textualanimator.h"

#include <utility>

TextualAnimator::TextualAnimator(QObject* parent)
    : TextualAnimator(QString(), 0, parent)
{
}

TextualAnimator::TextualAnimator(QString text, int pointsCount, QObject* parent)
    : QTimer(parent)
    , pointsCount(qMax(0, pointsCount))
    , current(this->pointsCount)
    , text(std::move(text))
{
    connect(this, SIGNAL(timeout()), SLOT(sendNewText()));
}

void TextualAnimator::start(int msecs)
{
    QTimer::start(msecs);
    sendNewText();
}

void TextualAnimator::start()
{
    QTimer::start();
    sendNewText();
}

void TextualAnimator::stop()
{
    QTimer::stop();
    current = pointsCount;
}

void TextualAnimator::setText(QString text)
{
    this->text = std::move(text);
}

void TextualAnimator::setPointsCount(int pointsCount)
{
    this->pointsCount = qMax(0, pointsCount);
}

QString TextualAnimator::sendNewText()
{
    if (!isActive()) {
        return {};
    }
    current = (current + 1) % (pointsCount + 1);
    QString result = text + QString(current, '.') + QString(pointsCount - current, ' ');
    emit newText(result);
    return result;
}
