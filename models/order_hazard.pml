/* A look-up names the object in its hazard and looks again; whoever closes the handle empties the slot, has one barrier
 * on all processors, and waits until nobody names the object: UsedObject::LookUp (winport/handles/handle_table.h),
 * CloseHandle, BarrierOnAllProcessors, WaitUntilUnused (winport/handles/handle_table.cpp). With FENCES there is no such
 * barrier, and each look-up has a fence. What is used is not freed. */
#include "weak_order.pml"

#define OBJECT 0
#define GENERATION 1
#define HAZARD 2

bit freed;

proctype User(byte me) {
    byte object, again, generation;
    Load(OBJECT, object);
    StoreRelease(HAZARD, object);
#ifdef FENCES
#ifndef WEAK_USER
    FENCE;
#endif
#endif
    Load(GENERATION, generation);
    Load(OBJECT, again);
    if
    :: object && again == object && generation ->
        assert(!freed);
        assert(!freed)
    :: else
    fi;
    StoreRelease(HAZARD, 0)
}

proctype Closer(byte me) {
    byte hazard;
    atomic { FENCE -> memory[GENERATION] = 0 }
    atomic { FENCE -> memory[OBJECT] = 0 }
#ifndef FENCES
#ifndef WEAK_CLOSER
    pending[0] == 0; /* the user's processor has a barrier between two of its instructions */
#endif
#endif
    do
    :: Load(HAZARD, hazard);
        if
        :: hazard == 0 -> break
        :: else
        fi
    od;
    freed = 1
}

init {
    atomic { memory[OBJECT] = 1; memory[GENERATION] = 1; run Buffer(0); run User(0); run Closer(1) }
}
