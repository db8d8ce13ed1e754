// The least that two processes of this machine pay: both do nothing but look at memory.
#pragma once

#include "engine/contender.h"

extern const Contender kPollingLimit;
extern const Contender kLargePollingLimit;
