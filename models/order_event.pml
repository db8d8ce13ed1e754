/* An event is set while somebody goes to sleep on its word, and what was written before the set is read after the wait:
 * SetSignal, TakeEvent (winport/sync/event_object.cpp), AnnounceSleep (winport/sync/wait.cpp). All that touches the word
 * is a read-modify-write; the kernel compares the word before it lets a thread sleep. */
#include "weak_order.pml"

#define DATA 0
#define WORD 1
#define SIGNALED 1
#define SLEEPERS 2

bit sleeps;

/* SetSignal: exchange, then a wake if anybody had said that he sleeps */
proctype Setter(byte me) {
    byte before;
    StoreRelaxed(DATA, 1);
    atomic {
#ifndef WEAK_SET
        FENCE ->
#endif
        before = memory[WORD];
        memory[WORD] = SIGNALED
    }
    if
    :: before & SLEEPERS -> sleeps = 0
    :: else
    fi
}

proctype Waiter(byte me) {
    byte word, data;
    bit taken;
    do
    :: /* TakeEvent */
        atomic {
            taken = (memory[WORD] & SIGNALED) != 0;
            memory[WORD] = memory[WORD] & (255 - SIGNALED)
        }
        if
        :: taken -> break
        :: else
        fi;
        /* AnnounceSleep: the word is looked at and said to have a sleeper in one */
#ifdef WEAK_ANNOUNCE
        word = memory[WORD];
        memory[WORD] = word | SLEEPERS;
        word = 1;
#else
        atomic {
            word = (memory[WORD] & SIGNALED) == 0;
            memory[WORD] = (word -> memory[WORD] | SLEEPERS : memory[WORD])
        }
#endif
        /* SleepOn */
        if
        :: word ->
            atomic {
                sleeps = memory[WORD] == SLEEPERS
            }
            !sleeps
        :: else
        fi
    od;
    Load(DATA, data);
    assert(data)
}

init {
    atomic { run Buffer(0); run Setter(0); run Waiter(1) }
}
