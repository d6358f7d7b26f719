#include "platform/launcher/wrappanel.h"

#include "platform/launcher/touchbutton.h"
#include "platform/launcher/zuconfig.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>

#include <algorithm>

namespace {

/// Rows and columns of the page that a widget takes; empty where its page has no grid.
QRect cellsOf(QWidget& widget)
{
    const QWidget* page = widget.parentWidget();
    const auto* grid = page == nullptr ? nullptr : qobject_cast<QGridLayout*>(page->layout());
    const int index = grid == nullptr ? -1 : grid->indexOf(&widget);
    if (index < 0) {
        return {};
    }
    int row = 0;
    int column = 0;
    int rows = 0;
    int columns = 0;
    grid->getItemPosition(index, &row, &column, &rows, &columns);
    return {column, row, columns, rows};
}

bool shareCell(QWidget& a, QWidget& b)
{
    return &a != &b && a.parentWidget() == b.parentWidget() && cellsOf(a).intersects(cellsOf(b));
}

/// Where a part's state is kept; a name that no translation changes.
ZuConfig memoryOf(const QWidget& part)
{
    const QString name =
        part.objectName().isEmpty() ? part.metaObject()->className() : part.objectName();
    return {"zu-launcher", "panels", QString(name).replace("::", ".")};
}

QString titleOf(const QWidget& part)
{
    return part.windowTitle().isEmpty() ? part.objectName() : part.windowTitle();
}

} // namespace

WrapPanel::WrapPanel(bool exclusive, QWidget* parent)
    : QWidget(parent)
    , row(new QHBoxLayout(this))
    , isExclusive(exclusive)
{
    constexpr int kMargin = 6;
    constexpr int kEdge = 2;
    row->setContentsMargins(kMargin, kEdge, kMargin, kEdge);
    row->setSpacing(kMargin);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void WrapPanel::attach(QWidget* part, bool remember)
{
    if (part == nullptr || find(part) != nullptr) {
        return;
    }
    parts << Part {part, newButton(part), remember, false};
    part->installEventFilter(this);
    const QVariant remembered = remember ? memoryOf(*part).value() : QVariant();
    setShown(part, remembered.isValid() ? remembered.toBool() : !part->isHidden());
}

QPushButton* WrapPanel::newButton(QWidget* part)
{
    auto* button = new TouchButton(titleOf(*part), this);
    button->setCheckable(true);
    row->addWidget(button, 1);
    connect(button, &QPushButton::clicked, part, [this, part](bool on) { pressed(part, on); });
    connect(part, &QObject::destroyed, this, [this, button] {
        const auto gone = std::find_if(parts.begin(), parts.end(),
                                       [&](const Part& one) { return one.button == button; });
        parts.erase(gone);
        delete button;
    });
    return button;
}

void WrapPanel::pressed(QWidget* part, bool shown)
{
    setShown(part, shown);
    remember();
}

void WrapPanel::setShown(QWidget* part, bool shown)
{
    Part* one = find(part);
    if (one == nullptr) {
        return;
    }
    if (shown) {
        part->show();
        hideOthersInCell(*part);
    } else if (!one->isHeld) {
        part->hide();
        fillCell(*part);
    }
    one->button->setChecked(!part->isHidden());
}

void WrapPanel::setHeld(QWidget* part, bool held)
{
    if (Part* one = find(part)) {
        one->isHeld = held;
        if (held) {
            setShown(part, true);
        }
    }
}

void WrapPanel::hideOthersInCell(QWidget& part)
{
    for (const Part& other : qAsConst(parts)) {
        if (isExclusive && shareCell(*other.widget, part)) {
            other.widget->hide();
        }
    }
}

void WrapPanel::fillCell(QWidget& part)
{
    for (const Part& other : qAsConst(parts)) {
        if (other.isHeld && shareCell(*other.widget, part)) {
            other.widget->show();
        }
    }
}

void WrapPanel::remember() const
{
    for (const Part& one : parts) {
        const bool shown = !one.widget->isHidden();
        const QVariant before = memoryOf(*one.widget).value();
        if (one.isRemembered && (!before.isValid() || before.toBool() != shown)) {
            memoryOf(*one.widget).store(shown);
        }
    }
}

bool WrapPanel::eventFilter(QObject* object, QEvent* event)
{
    Part* one = find(object);
    if (one != nullptr) {
        switch (event->type()) {
        case QEvent::ShowToParent:
            one->button->setChecked(true);
            hideOthersInCell(*one->widget);
            break;
        case QEvent::HideToParent:
            one->button->setChecked(false);
            break;
        case QEvent::WindowTitleChange:
            one->button->setText(titleOf(*one->widget));
            break;
        default:
            break;
        }
    }
    return QWidget::eventFilter(object, event);
}

WrapPanel::Part* WrapPanel::find(const QObject* widget)
{
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [&](const Part& one) { return one.widget == widget; });
    return found == parts.end() ? nullptr : &*found;
}
