#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

/// Shows a window where it stood at the end of the last run, and remembers where it stands now.
class FrameMemory : public QObject
{
    Q_OBJECT

public:
    explicit FrameMemory(QWidget* frame);

    /// What was not stored yet is.
    ~FrameMemory() override;

    /// Shows the window in its place, or in the middle of the screen where none is remembered.
    /// \param usual the size that it has then
    void show(const QSize& usual);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void store();

    QPointer<QWidget> frame;
    QTimer settled; ///< a drag moves a window a hundred times
};
