#pragma once

#include <QComboBox>
#include <QList>
#include <QPointer>
#include <QStringList>
#include <QVariant>

#include <functional>

class ChoicePopup;

/// A choice box for the touch screen: each entry has a label and a value, and is offered on a large
/// button of its own.
///
/// A value that no entry has may be bound to it: that is then what the box shows, while the
/// selection stays for what asks for it, and no entry is marked as chosen.
///
/// Tab reaches it; Space, Enter or a tap opens it.
class HistoryCombo : public QComboBox
{
    Q_OBJECT

public:
    /// \param editable whether other texts than the entries may be typed
    explicit HistoryCombo(QWidget* parent = nullptr, bool editable = false);
    ~HistoryCombo() override;

    /// Whether the entries that the user chooses most are offered first, and how many of them. The
    /// indices of the entries stay as they are.
    bool history = true;
    int historyCount = 3;

    using QComboBox::addItems;

    /// Appends entries; a label without a value gets none.
    void addItems(const QStringList& labels, const QList<QVariant>& values);

    /// The first entry with this value, as number or text ("100" is 100); -1 where there is none.
    [[nodiscard]] int indexOfData(const QVariant& value) const;

    using Wording = std::function<QString(const QVariant& value)>;

    /// How a value that no entry has is to read; as it is, unless told otherwise.
    void setWording(const Wording& newWording);

    /// What stands in the box.
    [[nodiscard]] QString shownText() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

    void showPopup() override;
    void hidePopup() override;

public slots:
    /// Selects the entry with this value; without one the selection stays, and the value is shown.
    void setCurrentIndexByData(const QVariant& value);

signals:
    /// Another value is selected, by the user or by the program, or the user chose the same again.
    void currentDataChanged(const QVariant& value);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void announce();
    void choose(int index);
    void countUse(int index);
    void setForeign(const QVariant& value);
    [[nodiscard]] QVector<int> offeredOrder() const;

    QPointer<ChoicePopup> popup;
    QVariant announced;
    QVariant foreign; ///< the bound value where no entry has it; invalid where one has
    Wording wording;
};
