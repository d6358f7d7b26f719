#pragma once

#include <QHeaderView>

/// The titles of a table's columns, each whole: where a word is wider than its column, its letters
/// are smaller. For columns that share the width, which may be little.
class FittingHeader : public QHeaderView
{
    Q_OBJECT

public:
    explicit FittingHeader(QWidget* parent = nullptr);

    /// The font that a column's title has now.
    Q_INVOKABLE [[nodiscard]] QFont titleFont(int section) const;

protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;

    /// A line of text, in no width of its own: not to measure the titles saves a twentieth of the
    /// program's start.
    [[nodiscard]] QSize sectionSizeFromContents(int section) const override;
};
