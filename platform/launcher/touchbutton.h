#pragma once

#include <QPushButton>

/// A button for fingers: high enough to hit, with room around its text, and with no doubt whether
/// it is checked. Enter presses it as Space does.
class TouchButton : public QPushButton
{
    Q_OBJECT

public:
    explicit TouchButton(const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

    /// The colours that the button has now, checked or not.
    [[nodiscard]] QPalette shownPalette() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
