#pragma once

#include "platform/otdr/wfmeasparams.h"

#include <QString>

class CardController;
class ZuConfigModel;

/// OTDR helpers that need the launcher's configuration and card.
namespace OTDR {

/// The naming scheme in force where none is configured.
extern const char* const kDefaultReflNameScheme;

/// Builds the automatic name of a trace.
///
/// The scheme is words joined by underscores. "wavelength" (nm), "pulse" (ns), "distance" (m,
/// whole), "date" (yyyyMMdd) and "time" (HHmmss, both of now), "index" (four digits at least) are
/// replaced, any other word, such as "trace", stays. A wavelength of 0 is left out. \param[out]
/// name the name built \param scheme the naming scheme; an empty one is replaced by that of the
/// configuration \param params of the trace; not changed \param index to use; negative: the running
/// index of the configuration \param config where scheme and running index are kept; null: the
/// defaults \param withUnits whether numbers carry their unit: "1550nm" or "1550"
void constructReflName(QString& name, QString& scheme, WfMeasParams& params, int index,
                       ZuConfigModel* config, bool withUnits);

/// Advances the running index ("AdvancedParams"/"reflIndex") for the next name.
/// \param wrap whether 9999 is followed by 1, so that the width stays; otherwise by 10000
void incrementReflIndex(ZuConfigModel* config, bool wrap);

/// Writes the card's identity into section "CardInfo": HardwareRevision, Serial, Name. Without a
/// card the last one's stays.
void updateCardInfoConfig(CardController* card, ZuConfigModel* config);

} // namespace OTDR
