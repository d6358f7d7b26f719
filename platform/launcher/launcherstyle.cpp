#include "platform/launcher/launcherstyle.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDynamicPropertyChangeEvent>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

namespace {

const char* const kPaletteId = "palette_id";
constexpr int kTouchSize = 44;
constexpr int kScrollBarWidth = 24;
constexpr int kIndicatorSize = 22;

void drawFrame(QPainter& painter, const QRectF& around, const QColor& colour, double width)
{
    constexpr double kCorner = 3.0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(around, kCorner, kCorner);
    painter.restore();
}

/// A frame in the colour of the text that stands there: on whatever ground that is read, this is
/// seen.
void drawFocusFrame(QPainter& painter, const QRect& around, const QColor& text)
{
    constexpr double kInset = 3.0;
    constexpr double kWidth = 2.0;
    drawFrame(painter, QRectF(around).adjusted(kInset, kInset, -kInset, -kInset), text, kWidth);
}

/// A frame for a row, which may be marked or not: dark in light, so that one of them is seen.
void drawRowFrame(QPainter& painter, const QRect& row, const QPalette& palette)
{
    constexpr double kWidth = 2.0;
    QRectF line = QRectF(row).adjusted(1.0, 1.0, -1.0, -1.0);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::Base}) {
        drawFrame(painter, line, palette.color(role), kWidth);
        line.adjust(kWidth, kWidth, -kWidth, -kWidth);
    }
}

/// The edge of what is to be filled in, which by night is hardly darker than the page.
void drawEdge(QPainter& painter, const QStyleOption& option, bool isRound)
{
    constexpr double kHalf = 0.5;
    const QRectF edge = QRectF(option.rect).adjusted(kHalf, kHalf, -kHalf, -kHalf);
    const QColor colour = option.palette.color(QPalette::PlaceholderText);
    if (!isRound) {
        drawFrame(painter, edge, colour, 1.0);
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colour);
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(edge);
    painter.restore();
}

bool showsFocus(const QStyleOption& option)
{
    return option.state.testFlag(QStyle::State_HasFocus)
        && option.state.testFlag(QStyle::State_KeyboardFocusChange);
}

/// A tree draws the frame around all columns of a row without saying who draws.
const QWidget* drawnOn(const QPainter& painter, const QWidget* widget)
{
    if (widget != nullptr || painter.device()->devType() != QInternal::Widget) {
        return widget;
    }
    return static_cast<const QWidget*>(painter.device())->parentWidget(); // it is the viewport
}

bool isRow(const QStyleOption& option, const QWidget* widget)
{
    return option.state.testFlag(QStyle::State_Item)
        || qobject_cast<const QAbstractItemView*>(widget) != nullptr;
}

/// Whether keys brought the focus. Of a row Qt says so in any case.
bool isFocusOfKeys(const QStyleOption& option, const QWidget* widget)
{
    return isRow(option, widget) && widget != nullptr
        ? widget->window()->testAttribute(Qt::WA_KeyboardFocusChange)
        : option.state.testFlag(QStyle::State_KeyboardFocusChange);
}

bool isKey(QEvent::Type type)
{
    return type == QEvent::KeyPress || type == QEvent::ShortcutOverride;
}

/// The edge of a dialog, by which it stands out from a window of the same colour: on an instrument
/// there is no window manager to draw one.
void drawEdge(QWidget& dialog)
{
    constexpr int kHalf = 128;
    QColor line = dialog.palette().color(QPalette::WindowText);
    line.setAlpha(kHalf);
    QPainter painter(&dialog);
    painter.setPen(line);
    painter.drawRect(dialog.rect().adjusted(0, 0, -1, -1));
}

} // namespace

LauncherStyle::LauncherStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion")))
{
}

void LauncherStyle::setLight(PaletteFactory::Light newLight)
{
    light = newLight;
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        givePalette(*widget);
    }
}

void LauncherStyle::polish(QApplication* application)
{
    QProxyStyle::polish(application);
    application->installEventFilter(this);
}

void LauncherStyle::unpolish(QApplication* application)
{
    application->removeEventFilter(this);
    QProxyStyle::unpolish(application);
}

void LauncherStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    givePalette(*widget); // one that named it before there was this style
}

void LauncherStyle::givePalette(QWidget& widget) const
{
    const QVariant id = widget.property(kPaletteId);
    if (id.isValid()) {
        widget.setPalette(PaletteFactory::getPalette(id.toString(), light));
        widget.setAutoFillBackground(true); // what lies around it may have another ground
    }
}

int LauncherStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                               const QWidget* widget) const
{
    const int usual = QProxyStyle::pixelMetric(metric, option, widget);
    switch (metric) {
    case PM_ScrollBarExtent:
        return qMax(usual, kScrollBarWidth);
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return qMax(usual, kIndicatorSize);
    default:
        return usual;
    }
}

QSize LauncherStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                      const QSize& size, const QWidget* widget) const
{
    const QSize usual = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton:
    case CT_ToolButton:
    case CT_CheckBox:
    case CT_RadioButton:
    case CT_ComboBox:
    case CT_SpinBox:
    case CT_TabBarTab:
        return usual.expandedTo({kTouchSize, kTouchSize});
    case CT_LineEdit:
    case CT_MenuItem:
        return usual.expandedTo({0, kTouchSize});
    default:
        return usual;
    }
}

int LauncherStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                             QStyleHintReturn* more) const
{
    // Green beside the "Yes" that replaces a file, and red beside the harmless "No", mislead.
    return hint == SH_DialogButtonBox_ButtonsHaveIcons
        ? 0
        : QProxyStyle::styleHint(hint, option, widget, more);
}

void LauncherStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                  QPainter* painter, const QWidget* widget) const
{
    if (element == PE_FrameFocusRect) {
        const QWidget* focused = drawnOn(*painter, widget);
        if (!isFocusOfKeys(*option, focused)) {
            return;
        }
        if (isRow(*option, focused)) {
            drawRowFrame(*painter, option->rect, option->palette);
        } else {
            drawFrame(*painter, option->rect, option->palette.color(QPalette::WindowText), 2.0);
        }
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_FrameLineEdit) {
        drawEdge(*painter, *option, false);
        if (showsFocus(*option)) {
            constexpr int kOut = 2; // the text lies close to the edge
            drawFocusFrame(*painter, option->rect.adjusted(-kOut, -kOut, kOut, kOut),
                           option->palette.color(QPalette::Text));
        }
    } else if (element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton) {
        drawEdge(*painter, *option, element == PE_IndicatorRadioButton);
    }
}

void LauncherStyle::drawControl(ControlElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const
{
    if (element != CE_PushButton) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    // A button has its frame inside its edge, not around its text.
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    proxy()->drawControl(CE_PushButtonBevel, option, painter, widget);
    if (button != nullptr) {
        QStyleOptionButton label = *button;
        label.rect = subElementRect(SE_PushButtonContents, option, widget);
        proxy()->drawControl(CE_PushButtonLabel, &label, painter, widget);
    }
    if (showsFocus(*option)) {
        drawFocusFrame(*painter, option->rect, option->palette.color(QPalette::ButtonText));
    }
}

void LauncherStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                       QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox && showsFocus(*option)) {
        drawFocusFrame(*painter, option->rect, option->palette.color(QPalette::ButtonText));
    }
}

bool LauncherStyle::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (!watched->isWidgetType()) {
        return QProxyStyle::eventFilter(watched, event);
    }
    auto& widget = *static_cast<QWidget*>(watched);
    if (type == QEvent::DynamicPropertyChange) {
        if (static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName() == kPaletteId) {
            givePalette(widget);
        }
    } else if (isKey(type)) {
        isByKeys = true;
        if (qobject_cast<QAbstractItemView*>(watched) != nullptr) {
            showFocus(*widget.window(), true); // they lead on from the row that a finger chose
        }
    } else if (type == QEvent::MouseButtonPress) {
        isByKeys = false;
        showFocus(*widget.window(), false);
    } else if (type == QEvent::Show && widget.isWindow() && isByKeys) {
        showFocus(widget, true); // opened by keys: they go on in it
    } else if (type == QEvent::Paint && widget.isWindow() && widget.inherits("QDialog")) {
        drawEdge(widget); // first: what the dialog paints itself comes upon it
    }
    return QProxyStyle::eventFilter(watched, event);
}

void LauncherStyle::showFocus(QWidget& window, bool shown)
{
    if (window.testAttribute(Qt::WA_KeyboardFocusChange) == shown) {
        return;
    }
    window.setAttribute(Qt::WA_KeyboardFocusChange, shown);
    QWidget* focused = window.focusWidget();
    if (const auto* rows = qobject_cast<QAbstractItemView*>(focused)) {
        rows->viewport()->update();
    } else if (focused != nullptr) {
        focused->update();
    }
}
