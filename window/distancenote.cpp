#include "window/distancenote.h"

#include "platform/launcher/palettefactory.h"

namespace Waveform {

namespace {

constexpr int kFromEdge = 8;
constexpr int kMargin = 4;
constexpr int kWidth = 190; ///< beside what else lies over a small canvas

} // namespace

DistanceNote::DistanceNote(QWidget* canvas)
    : QLabel(canvas)
{
    setObjectName("distanceNote");
    setText(tr("The distances of this trace are not known: a metre stands for a sample."));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setMargin(kMargin);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setPalette(PaletteFactory::getPalette("chart"));
    setAutoFillBackground(true); // words across the lines of the grid are hard to read
    setGeometry(kFromEdge, kFromEdge, kWidth, heightForWidth(kWidth));
    lower(); // what can be touched comes before what is said
    hide();
}

void DistanceNote::showFor(Reflectogram refl)
{
    setVisible(!refl.hasDistances());
}

} // namespace Waveform
