/* Sleeping at a bell, winport/sync/bells.cpp: the sleeper arms its bell and then looks at the events, one that sets an
 * event changes it and then looks at the bell. Two events, each set by another thread. */
#define THREADS 3
#include "weak_order.pml"

#define BELL 0
#define EVENT 1 /* and the next one */
#define SIGNALED 1
#define NUMBER 2

bit sleeps;

/* SetSignal (winport/sync/event_object.cpp), RingBell, Ring */
proctype Setter(byte me) {
    byte before, bell;
#ifdef WEAK_SET
    atomic { before = memory[EVENT + me - 1] }
    StoreRelease(EVENT + me - 1, SIGNALED);
#else
    atomic {
        FENCE ->
        before = memory[EVENT + me - 1];
        memory[EVENT + me - 1] = SIGNALED
    }
#endif
    if
    :: before & NUMBER ->
        Load(BELL, bell);
        if
        :: bell % 2 ->
            atomic {
                bell = memory[BELL] == bell;
                memory[BELL] = memory[BELL] + bell
            }
            if
            :: bell -> sleeps = 0
            :: else
            fi
        :: else
        fi
    :: else
    fi
}

/* BellSleep::BellSleep */
inline Arm() {
#ifdef WEAK_ARM
    Load(BELL, armed);
    armed = armed | 1;
    StoreRelease(BELL, armed);
#else
    atomic {
        FENCE ->
        armed = memory[BELL] | 1;
        memory[BELL] = armed
    }
#endif
}

/* BellSleep::LeaveNumber */
inline LeaveNumber(event) {
    if
    :: free ->
#ifdef FAULT_THE_NUMBER_IS_LEFT_WITHOUT_A_LOOK
        memory[event] = memory[event] | NUMBER
#else
        atomic {
            free = (memory[event] & SIGNALED) == 0;
            memory[event] = (free -> NUMBER : memory[event])
        }
#endif
    :: else
    fi
}

proctype Sleeper(byte me) {
    byte armed;
    bit free, one, two;
    do
    :: one && two -> break
    :: else ->
        free = 1;
#ifndef FAULT_THE_BELL_IS_ARMED_AFTER_THE_LOOK
        Arm();
#endif
        LeaveNumber(EVENT);
        LeaveNumber(EVENT + 1);
#ifdef FAULT_THE_BELL_IS_ARMED_AFTER_THE_LOOK
        Arm();
#endif
        /* BellSleep::Sleep */
        if
        :: free ->
#ifdef WEAK_ARM
            (pending[me] & BIT(BELL)) == 0; /* the call of the kernel */
#endif
            atomic { sleeps = memory[BELL] == armed }
            !sleeps
        :: else
        fi;
        /* TakeEvent */
        atomic { one = one || memory[EVENT] & SIGNALED; memory[EVENT] = memory[EVENT] & NUMBER }
        atomic { two = two || memory[EVENT + 1] & SIGNALED; memory[EVENT + 1] = memory[EVENT + 1] & NUMBER }
    od
}

init {
    atomic { run Buffer(0); run Buffer(1); run Buffer(2); run Sleeper(0); run Setter(1); run Setter(2) }
}
