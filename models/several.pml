/* Waits for one, any and all of several objects: winport/sync/wait.cpp, event_object.cpp, bells.cpp. Two auto-reset
 * events, a manual-reset one, and a mutex, here without its line (mutex.pml): a wait for several looks out of turn.
 *
 * A process waits for the objects of WAITS, any or (ALL) all of them, gives a mutex back, and then sets the events of
 * SETS one after the other; with RESETS it resets the manual one after that. As in mutex.pml a process may be killed
 * before each write and in each sleep, and the time that is there for the killed (1 s) passes only after a kill. When
 * nothing moves any more, nobody may sleep beside what it waits for. */

#define E0 1
#define E1 2
#define MANUAL 4
#define MUTEX 8
#define AUTO (E0 + E1)

#ifndef DEATHS
#define DEATHS 1
#endif
#ifndef WAITS1
#define WAITS1 AUTO
#endif
#ifndef WAITS2
#define WAITS2 AUTO
#endif
#ifndef WAITS3
#define WAITS3 0
#endif
#ifndef ALL1
#define ALL1 0
#endif
#ifndef ALL2
#define ALL2 0
#endif
#ifndef SETS1
#define SETS1 0
#endif
#ifndef SETS2
#define SETS2 0
#endif
#ifndef SETS3
#define SETS3 AUTO
#endif
#ifndef RESETS
#define RESETS 0
#endif

/* The objects' words, by their number: 0, 1 auto-reset, 2 manual-reset, 3 the mutex. */
bit signaled[4], sleepers[4];
byte number[4]; /* the bell that an event has */
byte count;     /* sets of the manual one */
byte owner;
bit abandoned;
byte bell[4]; /* of each thread, modulo 8 */

/* The kernel's: on which words somebody sleeps, 16 the bell. */
byte asleep[4];

/* What is watched, and no part of the code. */
bit dead[4], owed, finish;
byte deaths, wants[4], wantsCount[4];
bit wantsAll[4];

#define OF(object) (1 << (object))
#ifdef FAULT_THE_COUNT_IS_READ_AT_THE_SLEEP
#define COUNT_CHANGED 0
#else
#define COUNT_CHANGED (count != countAtStart)
#endif
#define IS_TO_BE_HAD(object) (signaled[object] || (object == 2 && COUNT_CHANGED) || (object == 3 && owner == 0))

#define OR_DIES                                  \
    :: atomic {                                  \
        deaths < DEATHS && !finish ->            \
        dead[me] = 1;                            \
        deaths++;                                \
        owed = owed || owner == me;              \
        asleep[me] = 0;                          \
        goto gone                                \
    }

/* Wake(word, INT_MAX) */
inline WakeAll(words) {
    d_step {
        if :: asleep[1] & (words) -> asleep[1] = 0 :: else fi;
        if :: asleep[2] & (words) -> asleep[2] = 0 :: else fi;
        if :: asleep[3] & (words) -> asleep[3] = 0 :: else fi
    }
}

/* Ring */
inline Ring(whose) {
    if
    :: atomic {
        bell[whose] % 2 == 1 -> bell[whose] = (bell[whose] + 1) % 8; ok = 1
    }
    :: atomic { bell[whose] % 2 == 0 -> ok = 0 }
    OR_DIES
    fi;
    if
    :: ok ->
        if
        :: atomic {
            if
            :: asleep[whose] == 16 -> asleep[whose] = 0
            :: else
            fi
        }
        OR_DIES
        fi
    :: else
    fi;
    ok = 0
}

/* SetSignal. An auto-reset event's exchange leaves the signal alone; a manual one's set counts. */
inline SetSignal(object) {
    if
    :: atomic {
        signaled[object] = 1;
        other = number[object];
        had = sleepers[object];
        sleepers[object] = 0;
        number[object] = 0;
        count = (object == 2 -> (count + 1) % 4 : count)
    }
    OR_DIES
    fi;
    if
    :: other -> Ring(other)
    :: else
    fi;
    if
    :: had ->
        if
        :: WakeAll(OF(object))
        OR_DIES
        fi
    :: else
    fi;
    atomic { had = 0; other = 0 }
}

/* TakeEvent, MutexObject::TryTake: whether it was had */
inline TryTake(object) {
    if
    :: atomic {
        if
        :: object < 2 -> ok = signaled[object]; signaled[object] = 0
        :: object == 2 -> ok = signaled[2] || count != countAtStart
        :: object == 3 ->
            ok = owner == 0;
            if
            :: ok ->
                assert(abandoned == owed);
                owner = me;
                abandoned = 0;
                owed = 0
            :: else
            fi
        fi
    }
    OR_DIES
    fi
}

/* MutexObject::NoticeDeaths */
inline NoticeDeaths() {
    if
    :: owner != 0 && dead[owner] ->
        if
        :: atomic {
            if
            :: owner != 0 && dead[owner] -> owner = 0; abandoned = 1; had = sleepers[3]; sleepers[3] = 0
            :: else
            fi
        }
        OR_DIES
        fi;
        if
        :: WakeAll(OF(3))
        OR_DIES
        fi;
        had = 0
    :: else
    fi
}

/* AnnounceSleep: false where the object is to be looked at again. The look and the flag are one: a compare-exchange. */
inline AnnounceSleep(object) {
#ifdef FAULT_THE_FLAG_IS_SET_AFTER_THE_LOOK
    atomic {
        free = IS_TO_BE_HAD(object)
    }
    if
    :: !free -> sleepers[object] = 1
    OR_DIES
    :: free
    fi
#else
    if
    :: atomic {
        free = IS_TO_BE_HAD(object);
        sleepers[object] = sleepers[object] || !free
    }
    OR_DIES
    fi
#endif
}

/* SleepOn: woken, or the time is over. That of a mutex is short: its look comes again within a millisecond. */
inline Sleep() {
    if
    :: atomic { !asleep[me] -> wants[me] = 0 }
    :: atomic { asleep[me] && (deaths > 0 || (wants[me] & MUTEX)) -> asleep[me] = 0; wants[me] = 0 }
    :: atomic { finish -> asleep[me] = 0; goto gone }
    OR_DIES
    fi
}

/* SleepOnObjects: the kernel compares all words before it lets the thread sleep. */
inline SleepOnObjects(which) {
    object = 0;
    free = 0;
    do
    :: object < 4 && !free && ((which) & OF(object)) -> AnnounceSleep(object); object++
    :: object < 4 && !free && !((which) & OF(object)) -> object++
    :: object == 4 || free -> break
    od;
    if
    :: free
    :: !free ->
        atomic {
#ifndef FAULT_THE_FLAG_IS_SET_AFTER_THE_LOOK
            free = (((which) & E0) && (signaled[0] || !sleepers[0])) || (((which) & E1) && (signaled[1] || !sleepers[1])) ||
                (((which) & MANUAL) && (signaled[2] || !sleepers[2] || COUNT_CHANGED)) ||
                (((which) & MUTEX) && (owner == 0 || !sleepers[3]));
#endif
            asleep[me] = (free -> 0 : (which));
            wants[me] = (free -> 0 : mine);
            wantsCount[me] = countAtStart;
            wantsAll[me] = all
        }
        Sleep()
    fi;
    atomic { object = 0; free = 0 }
}

/* BellSleep::LeaveNumber */
inline LeaveNumber(object) {
    other = number[object];
    if
    :: signaled[object] -> free = 1
    :: !signaled[object] && other == me
    :: !signaled[object] && other != 0 && other != me && !first && bell[other] % 2 == 1 -> none = 1
    :: else ->
        if
        :: atomic {
#ifdef FAULT_THE_NUMBER_IS_LEFT_WITHOUT_A_LOOK
            number[object] = me
#else
            free = signaled[object] || number[object] != other;
            number[object] = (free -> number[object] : me)
#endif
        }
        OR_DIES
        fi;
        if
        :: other != 0 && !free -> Ring(other)
        :: else
        fi
    fi;
    other = 0
}

/* SleepAtBell; `none` says that it cannot be */
inline SleepAtBell() {
    none = 0;
    free = 0;
#ifndef FAULT_THE_BELL_IS_ARMED_AFTER_THE_LOOK
    if
    :: atomic { armed = bell[me] | 1; bell[me] = armed } /* BellSleep::BellSleep */
    OR_DIES
    fi;
#endif
    object = 0;
    do
    :: object < 2 && !free && !none -> LeaveNumber(object); object++
    :: object == 2 || free || none -> break
    od;
#ifdef FAULT_THE_BELL_IS_ARMED_AFTER_THE_LOOK
    atomic { armed = bell[me] | 1; bell[me] = armed }
#endif
    if
    :: free || none
    :: else ->
        atomic {
            asleep[me] = (bell[me] == armed -> 16 : 0);
            wants[me] = (bell[me] == armed -> mine : 0);
            wantsCount[me] = countAtStart;
            wantsAll[me] = all
        }
        Sleep()
    fi;
    /* BellSleep::~BellSleep */
    if
    :: bell[me] == armed -> Ring(me)
    :: else
    fi;
    atomic { armed = 0; object = 0; free = 0 }
}

/* SleepOnAny, SleepOnMissing */
inline SleepOnThem() {
    if
    :: !all && mine == AUTO ->
        SleepAtBell();
        if
        :: none -> SleepOnObjects(mine)
        :: else
        fi;
        none = 0
    :: !all && mine != AUTO -> SleepOnObjects(mine)
    :: all ->
        /* the first that is missing; its word is read now */
        object = 0;
        do
        :: object == 4 -> break
        :: object < 4 && (mine & OF(object)) &&
            !(signaled[object] || (object == 3 && owner == 0)) -> break
        :: else -> object++
        od;
        countAtStart = count;
        if
        :: object == 4
        :: object < 4 -> missing = OF(object); SleepOnObjects(missing); missing = 0
        fi
    fi;
    object = 0;
    first = 0
}

/* TakeAny; TakeAllIfFree, TakeAll, which gives back what it took when it does not get all */
inline Look() {
    object = 0;
    got = 0;
    if
    :: !all ->
        do
        :: object < 4 && !got && (mine & OF(object)) -> TryTake(object); got = ok; ok = 0; object++
        :: object < 4 && !got && !(mine & OF(object)) -> object++
        :: object == 4 || got -> break
        od
    :: all ->
        free = (!(mine & E0) || signaled[0]) && (!(mine & E1) || signaled[1]) && (!(mine & MANUAL) || signaled[2]) &&
            (!(mine & MUTEX) || owner == 0);
        if
        :: free ->
            got = 1;
            do
            :: object < 4 && got && (mine & OF(object)) ->
                TryTake(object);
                got = ok;
                taken = (ok -> taken | OF(object) : taken);
                ok = 0;
                object++
            :: object < 4 && got && !(mine & OF(object)) -> object++
            :: object == 4 || !got -> break
            od;
            if
            :: !got && (taken & E0) -> SetSignal(0)
            :: else
            fi;
            if
            :: !got && (taken & E1) -> SetSignal(1)
            :: else
            fi;
            /* the mutex comes last here, and so is never given back */
            assert(got || !(taken & MUTEX));
            taken = 0
        :: else
        fi;
        free = 0
    fi;
    object = 0
}

/* WaitFor, WaitLonger */
inline Wait() {
    countAtStart = count;
    first = 1;
    Look();
    do
    :: got -> break
    :: !got ->
        if
        :: mine & MUTEX -> NoticeDeaths()
        :: else
        fi;
        SleepOnThem();
        Look()
    od
}

proctype Process(byte me; byte mine; bit all; byte sets) {
    byte object, other, armed, taken, countAtStart, missing;
    bit got, ok, had, free, none, first;
    if
    :: mine -> Wait()
    :: else
    fi;
    /* MutexObject::ReleaseLevel, ReleaseSlowly: within a turn it wakes nobody */
    if
    :: atomic { owner == me -> owner = 0 }
    :: owner != me
    OR_DIES
    fi;
    if
    :: sets & E0 -> SetSignal(0)
    :: else
    fi;
    if
    :: sets & E1 -> SetSignal(1)
    :: else
    fi;
    if
    :: sets & MANUAL ->
        SetSignal(2);
        if
        :: RESETS -> signaled[2] = 0 /* EventObject::Reset */
        :: else
        fi
    :: else
    fi;
gone:
    atomic {
        object = 0; other = 0; armed = 0; taken = 0; countAtStart = 0; missing = 0; got = 0; ok = 0;
        had = 0; free = 0; none = 0; first = 0
    }
}

#define IS_FREE(object, flag, state) (!(wants[who] & flag) || (state))
#define ANY_FREE                                                                                       \
    (((wants[who] & E0) && signaled[0]) || ((wants[who] & E1) && signaled[1]) ||                        \
     ((wants[who] & MANUAL) && signaled[2]) || ((wants[who] & MUTEX) && owner == 0))
#define ALL_FREE                                                                                       \
    (IS_FREE(0, E0, signaled[0]) && IS_FREE(1, E1, signaled[1]) && IS_FREE(2, MANUAL, signaled[2]) &&    \
     IS_FREE(3, MUTEX, owner == 0))

/* When nothing moves any more: nobody waits for ever beside a free object, nor was passed by a set. */
proctype Watch() {
    byte who = 1;
    timeout ->
    do
    :: who == 4 -> break
    :: who < 4 ->
        if
        :: asleep[who] -> assert(wantsAll[who] || !ANY_FREE); assert(!wantsAll[who] || !ALL_FREE)
        :: else
        fi;
        /* a set of a manual-reset event lets all go who waited for it before, also when it was reset since */
        assert(!asleep[who] || wantsAll[who] || !(wants[who] & MANUAL) || wantsCount[who] == count);
        who++
    od;
    finish = 1
}

init {
    atomic {
        run Process(1, WAITS1, ALL1, SETS1);
        run Process(2, WAITS2, ALL2, SETS2);
        run Process(3, WAITS3, 0, SETS3);
        run Watch()
    }
}
