// The least that two processes pay that leave the processor to others while they wait.
#pragma once

#include "engine/contender.h"

extern const Contender kSleepingLimit;
extern const Contender kLargeSleepingLimit;
