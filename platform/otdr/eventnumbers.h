#pragma once

#include "platform/otdr/event.h"

#include <utility>

/// The numbers of an event by the words of its text, in the order in which the text tells them.
inline constexpr std::pair<const char*, double Event::*> kEventNumbers[] = {
    {"coordinate", &Event::coordinate},
    {"width", &Event::width},
    {"loss", &Event::loss},
    {"reflIn", &Event::reflIn},
    {"reflOut", &Event::reflOut},
    {"reflectance", &Event::reflectance},
    {"orl", &Event::orl},
    {"length", &Event::length},
    {"attenuationBefore", &Event::attenuationBefore},
    {"beforeFrom", &Event::beforeFrom},
    {"behindFrom", &Event::behindFrom},
    {"behindTo", &Event::behindTo},
};
