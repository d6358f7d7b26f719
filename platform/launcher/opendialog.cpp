#include "platform/launcher/opendialog.h"

#include "platform/launcher/checkrowdelegate.h"
#include "platform/launcher/filesmodel.h"
#include "platform/launcher/touchbutton.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QScroller>
#include <QTextDocument>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QSize kLeastSize(640, 400);
const QSize kMostSize(900, 640);
constexpr int kButtonWidth = 110;
constexpr char kDirProperty[] = "dir"; ///< of the button of a place

/// The patterns of a filter: of an extension (".sor"), or those in the brackets of "Traces
/// (*.sor)".
QStringList patternsOf(const QString& filter)
{
    if (filter.startsWith(QLatin1Char('.'))) {
        return {QLatin1Char('*') + filter};
    }
    const QString inBrackets = filter.section(QLatin1Char('('), -1).section(QLatin1Char(')'), 0, 0);
    return inBrackets.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// Most of the window below, so that what is chosen from is seen.
QSize sizeOver(const QWidget* window)
{
    constexpr int kShare_percent = 90;
    const QSize share = window == nullptr ? kLeastSize : window->size() * kShare_percent / 100;
    return share.expandedTo(kLeastSize).boundedTo(kMostSize);
}

} // namespace

OpenDialog::OpenDialog(const FileDialog::Request& request, QWidget* parent)
    : QDialog(parent)
    , model(new FilesModel(patternsOf(request.filter), request.atMost, this))
    , placesRow(new QHBoxLayout)
    , places(new QButtonGroup(this))
    , list(newList())
    , empty(new QLabel(tr("There are no files here."), list))
    , left(new QLabel(this))
    , openButton(new TouchButton(tr("Load"), this))
{
    setWindowTitle(request.title);
    auto* other = new TouchButton(tr("Other..."), this);
    other->setObjectName(QStringLiteral("otherPlace"));
    other->setAutoDefault(false);
    connect(other, &QPushButton::clicked, this, &OpenDialog::askPlace);
    placesRow->addStretch();
    placesRow->addWidget(other);

    auto* overList = new QVBoxLayout(list->viewport());
    empty->setAlignment(Qt::AlignCenter);
    overList->addWidget(empty);

    auto* page = new QVBoxLayout(this);
    page->addLayout(placesRow);
    page->addWidget(list, 1);
    page->addLayout(newFoot());
    resize(sizeOver(parent == nullptr ? nullptr : parent->window()));

    connect(model, &FilesModel::checkedChanged, this, &OpenDialog::countLeft);
    for (const FileDialog::Place& place : request.places) {
        addPlace(place);
    }
    if (!places->buttons().isEmpty()) {
        places->buttons().first()->click();
    }
    countLeft();
    list->setFocus();
}

QStringList OpenDialog::files() const
{
    return chosen;
}

void OpenDialog::startAt(const QString& dir)
{
    if (dir.isEmpty() || !QDir(dir).exists()) {
        return;
    }
    const QList<QAbstractButton*> known = places->buttons();
    const auto shows = [&](const QAbstractButton* button) {
        return QDir(button->property(kDirProperty).toString()) == QDir(dir);
    };
    const auto place = std::find_if(known.begin(), known.end(), shows);
    if (place == known.end()) {
        addPlace({QString(), dir});
    }
    (place == known.end() ? places->buttons().last() : *place)->click();
}

void OpenDialog::accept()
{
    chosen = model->checked();
    QDialog::accept();
}

bool OpenDialog::focusNextPrevChild(bool next)
{
    const auto buttons = places->buttons();
    for (QAbstractButton* button : buttons) {
        button->setFocusPolicy(Qt::StrongFocus);
    }
    return QDialog::focusNextPrevChild(next);
}

QTreeView* OpenDialog::newList()
{
    constexpr int kDateWidth = 160;
    constexpr int kSizeWidth = 90;
    auto* view = new QTreeView(this);
    view->setModel(model);
    view->setItemDelegate(new CheckRowDelegate(view));
    view->setRootIsDecorated(false);
    view->setUniformRowHeights(true);
    view->setAlternatingRowColors(true);
    view->setAllColumnsShowFocus(true);
    view->setTextElideMode(Qt::ElideMiddle);
    view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setSelectionMode(QAbstractItemView::NoSelection); // what is checked is chosen
    QScroller::grabGesture(view->viewport(), QScroller::LeftMouseButtonGesture);
    QHeaderView* header = view->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(FilesModel::Name, QHeaderView::Stretch);
    header->resizeSection(FilesModel::Date, kDateWidth);
    header->resizeSection(FilesModel::Size, kSizeWidth);
    connect(view, &QTreeView::doubleClicked, this, &OpenDialog::openRow);
    connect(view, &QTreeView::activated, this, [this](const QModelIndex& index) {
        if (model->checked().isEmpty()) {
            openRow(index);
        }
    });
    return view;
}

QHBoxLayout* OpenDialog::newFoot()
{
    auto* cancelButton = new TouchButton(tr("Cancel"), this);
    cancelButton->setMinimumWidth(kButtonWidth);
    cancelButton->setAutoDefault(false);
    openButton->setMinimumWidth(kButtonWidth);
    openButton->setDefault(true);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(openButton, &QPushButton::clicked, this, &QDialog::accept);
    left->setObjectName(QStringLiteral("left"));

    auto* foot = new QHBoxLayout;
    foot->addWidget(left, 1);
    foot->addWidget(cancelButton);
    foot->addWidget(openButton);
    return foot;
}

void OpenDialog::addPlace(const FileDialog::Place& place)
{
    QString name = place.name.isEmpty() ? QDir(place.dir).dirName() : place.name;
    name.replace('&', "&&"); // which is no shortcut here
    auto* button = new TouchButton(name, this);
    button->setCheckable(true);
    button->setAutoDefault(false);
    button->setProperty(kDirProperty, place.dir);
    button->setToolTip(Qt::convertFromPlainText(place.dir)); // never taken for markup
    placesRow->insertWidget(places->buttons().size(), button);
    places->addButton(button);
    connect(button, &QPushButton::clicked, this, [this, dir = place.dir] { showPlace(dir); });
}

void OpenDialog::showPlace(const QString& dir)
{
    shownDir = dir;
    model->setDirectory(dir);
    empty->setVisible(model->rowCount() == 0);
    list->setCurrentIndex(model->index(0, 0));
}

/// For the desktop, where traces lie anywhere.
void OpenDialog::askPlace()
{
    const QString dir = QFileDialog::getExistingDirectory(this, windowTitle(), shownDir,
                                                          QFileDialog::ShowDirsOnly
                                                              | QFileDialog::DontUseNativeDialog);
    if (!dir.isEmpty()) {
        addPlace({QString(), dir});
        places->buttons().last()->click();
    }
}

void OpenDialog::openRow(const QModelIndex& index)
{
    const QModelIndex first = index.sibling(index.row(), 0);
    const bool isChecked = first.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    if (isChecked || model->setData(first, Qt::Checked, Qt::CheckStateRole)) {
        accept();
    }
}

void OpenDialog::countLeft()
{
    left->setText(tr("May still be loaded: %1").arg(model->left()));
    openButton->setEnabled(!model->checked().isEmpty());
}
