/* What is written first and then published by one word: whoever reads the word finds the rest. So do
 *   IPCChannel::Write, ReadHeader (src/ipc/ipc_channel.cpp): the payload and the header, then the length;
 *   WinMutex::Lock, IsLocked (src/kwt/win_mutex.cpp): the owner's ids, then the count;
 *   MutexObject::BeginOwnership, WaitAsHeir (winport/sync/mutex_object.cpp): the turn, then the last owner. */
#include "weak_order.pml"

#define FIRST 0
#define SECOND 1
#define WORD 2

proctype Writer(byte me) {
    StoreRelaxed(FIRST, 1);
    StoreRelaxed(SECOND, 1);
#ifdef WEAK_STORE
    StoreRelaxed(WORD, 1)
#else
    StoreRelease(WORD, 1)
#endif
}

proctype Reader(byte me) {
    byte word, first, second;
#ifdef WEAK_LOAD
    if
    :: Load(WORD, word); Load(FIRST, first); Load(SECOND, second)
    :: Load(FIRST, first); Load(WORD, word); Load(SECOND, second)
    :: Load(SECOND, second); Load(WORD, word); Load(FIRST, first)
    :: Load(FIRST, first); Load(SECOND, second); Load(WORD, word)
    fi;
#else
    Load(WORD, word);
    if
    :: Load(FIRST, first); Load(SECOND, second)
    :: Load(SECOND, second); Load(FIRST, first)
    fi;
#endif
    assert(!word || (first && second))
}

init {
    atomic { run Buffer(0); run Writer(0); run Reader(1) }
}
