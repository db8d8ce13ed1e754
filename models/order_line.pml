/* The heir's place is passed on while somebody goes to sleep in the line: MutexObject::PassPlaceOn, WakeNextInQueue and
 * SleepInQueue (winport/sync/mutex_object.cpp). Nobody sleeps beside a place that is free. */
#include "weak_order.pml"

#define HEIR 0
#define QUEUE 1
#define COUNT 2

bit sleeps;

proctype Heir(byte me) {
    byte any;
    Load(COUNT, any);
#ifdef WEAK_PASS
    StoreRelaxed(HEIR, 0);
    atomic { memory[QUEUE] = memory[QUEUE] + 1 }
#else
    atomic { FENCE -> memory[HEIR] = (any -> 2 : 0) }
    atomic { FENCE -> memory[QUEUE] = memory[QUEUE] + 1 }
#endif
    atomic {
        any = any && !sleeps;
        sleeps = 0
    }
    /* the count of one that has just gone, or has not slept yet: the place is free, and the line is told again */
    if
    :: any ->
        atomic { FENCE -> memory[HEIR] = 0 }
        atomic { FENCE -> memory[QUEUE] = memory[QUEUE] + 1 }
        sleeps = 0
    :: else
    fi
}

proctype Sleeper(byte me) {
    byte line, heir;
#ifdef WEAK_LINE
    if
    :: Load(QUEUE, line); Load(HEIR, heir)
    :: Load(HEIR, heir); Load(QUEUE, line)
    fi;
    atomic { memory[COUNT] = memory[COUNT] + 1 }
#else
    Load(QUEUE, line);
    atomic { FENCE -> memory[COUNT] = memory[COUNT] + 1 }
    Load(HEIR, heir);
#endif
    if
    :: heir ->
        atomic { sleeps = memory[QUEUE] == line }
        !sleeps
    :: else
    fi
}

init {
    atomic { memory[HEIR] = 1; run Buffer(0); run Heir(0); run Sleeper(1) }
}
