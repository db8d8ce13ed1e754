// The library's own rows.
#pragma once

#include "engine/contender.h"

extern const Contender kGetFaxRedials;
extern const Contender kTypedGetFaxRedials;
extern const Contender kSetFaxRedials;
extern const Contender kRawExchange;
extern const Contender kFramedExchange;
extern const Contender kGetterSweep;
extern const Contender kBareSweep;
extern const Contender kFleetListing;
extern const Contender kFleetRaw;
