#include "platform/launcher/fittingheader.h"

#include "platform/launcher/fittedfont.h"

#include <QPainter>
#include <QStyle>

namespace {

constexpr int kMargins_px = 8; ///< what a style keeps free beside a title, both sides together

} // namespace

FittingHeader::FittingHeader(QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent)
{
}

QFont FittingHeader::titleFont(int section) const
{
    const QString title =
        model() == nullptr ? QString() : model()->headerData(section, orientation()).toString();
    return fittedFont(font(), title, sectionSize(section) - kMargins_px);
}

void FittingHeader::paintSection(QPainter* painter, const QRect& rect, int section) const
{
    painter->save();
    painter->setFont(titleFont(section));
    QHeaderView::paintSection(painter, rect, section);
    painter->restore();
}

QSize FittingHeader::sectionSizeFromContents(int /*section*/) const
{
    const int margin_px = style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, this);
    return {minimumSectionSize(), fontMetrics().height() + 2 * margin_px};
}
