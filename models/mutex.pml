/* A mutex with turns, an heir, a line of sleepers, and owners that die: winport/sync/mutex_object.cpp.
 *
 * Every access to the shared page is a step of its own, in one order for all (order_*.pml weaken it). A process may be
 * killed before each of its writes and while it sleeps; before a read would be the same, as nobody sees a read. A time
 * that is only there for the killed (25 ms and more) passes only once somebody was killed: whoever would sleep through
 * a wake-up that was lost sleeps for ever here, and spin calls that an invalid end state. A short time (200 us, a turn's
 * 5 ms, a caller's limit) may pass whenever it is looked at.
 *
 * -DKIND1 to 3 say how each process waits, -DROUNDS1 to 3 how often; -DFAULT_... puts a fault in (runs.txt). */

#ifndef TAKES
#define TAKES 2 /* of a turn; 200 in the code */
#endif
#ifndef ROUNDS1
#define ROUNDS1 1
#endif
#ifndef ROUNDS2
#define ROUNDS2 1
#endif
#ifndef ROUNDS3
#define ROUNDS3 1
#endif
#ifndef DEATHS
#define DEATHS 1
#endif
#define TO_COME 7 /* kHeirToCome */

/* How a process waits. */
#define NONE 0
#define WAITS 1 /* for as long as it takes */
#define LIMIT 2 /* with a limit, which may be over at any time */
#define POLLS 3 /* with a limit of zero, again and again */
#ifndef KIND1
#define KIND1 WAITS
#endif
#ifndef KIND2
#define KIND2 WAITS
#endif
#ifndef KIND3
#define KIND3 WAITS
#endif

/* The page: its word's three parts, which change together, and the turn. */
byte owner;
bit abandoned, sleeper;
byte lastOwner, turnTakes, heir, queue, queueSleepers;
bit turnAged, turnOld; /* since turnStart: 5 ms, 25 ms */

/* The kernel's: who sleeps on which word. */
bit sleepsOnWord[4], sleepsOnQueue[4], woken[4];

/* What is watched, and no part of the code. */
bit dead[4], has[4], ended[4];
byte deaths, passedBy; /* takes beside the present heir, by who saw it */
bit owed;              /* a death of an owner that nobody was told */

#define GONE(who) (ended[who] || dead[who])
#define ALONE ((me == 1 || GONE(1)) && (me == 2 || GONE(2)) && (me == 3 || GONE(3)))

#define OR_DIES                                   \
    :: atomic {                                   \
        deaths < DEATHS && !dead[me] && MAY_DIE -> \
        dead[me] = 1;                             \
        deaths++;                                 \
        owed = owed || has[me];                   \
        has[me] = 0;                              \
        sleepsOnWord[me] = 0;                     \
        sleepsOnQueue[me] = 0;                    \
        woken[me] = 0;                            \
        goto gone                                 \
    }
#ifndef MAY_DIE
#define MAY_DIE 1
#endif

/* Turn::IsOver */
inline TurnIsOver(yes) {
    atomic {
        if
        :: turnTakes >= TAKES || turnAged -> yes = 1
        :: turnTakes < TAKES && !turnAged -> yes = 0
        :: turnTakes < TAKES && !turnAged -> turnAged = 1; yes = 1
        fi
    }
}

inline WakeAllOnWord() {
    d_step { sleepsOnWord[1] = 0; sleepsOnWord[2] = 0; sleepsOnWord[3] = 0 }
}

/* MutexObject::WakeNextInQueue: the count, then one of those who sleep, whichever; `yes` says whether there was one. */
inline WakeNextInQueue(yes) {
    if
    :: queue = (queue + 1) % 8
    OR_DIES
    fi;
    if
    :: atomic { sleepsOnQueue[1] -> sleepsOnQueue[1] = 0; woken[1] = 1; yes = 1 }
    :: atomic { sleepsOnQueue[2] -> sleepsOnQueue[2] = 0; woken[2] = 1; yes = 1 }
    :: atomic { sleepsOnQueue[3] -> sleepsOnQueue[3] = 0; woken[3] = 1; yes = 1 }
    :: !sleepsOnQueue[1] && !sleepsOnQueue[2] && !sleepsOnQueue[3] -> yes = 0
    OR_DIES
    fi
}

/* MutexObject::PassPlaceOn */
inline PassPlaceOn(place) {
    any = queueSleepers != 0;
    if
    :: atomic { heir == place -> heir = (any -> TO_COME : 0); passedBy = 0; ok = 1 }
    :: atomic { heir != place -> ok = 0 }
    OR_DIES
    fi;
    if
    :: ok ->
        WakeNextInQueue(ok);
        if
        :: !ok && any ->
            if
            :: queueSleepers = 0
            OR_DIES
            fi;
            if
            :: atomic { heir == TO_COME -> heir = 0; ok = 1 }
            :: heir != TO_COME
            OR_DIES
            fi;
            if
            :: ok -> WakeNextInQueue(ok)
            :: else
            fi
        :: else
        fi
    :: else
    fi;
    atomic { any = 0; ok = 0 }
}

/* MutexObject::NoticeDeadHeir */
inline NoticeDeadHeir() {
    if
    :: owner != 0
    :: owner == 0 ->
        place = heir;
        if
        :: place != 0 && place != TO_COME && dead[place] -> PassPlaceOn(place)
        :: place == TO_COME && (turnOld || deaths > 0) -> turnOld = 1; PassPlaceOn(place)
        :: place == 0 || (place != TO_COME && !dead[place]) || (place == TO_COME && !turnOld)
        fi;
        place = 0
    fi
}

/* MutexObject::Abandon */
inline Abandon(token) {
    if
#ifdef FAULT_A_DEATH_IS_TOLD_TO_NOBODY
    :: atomic { owner == token -> owner = 0; sleeper = 0; ok = 1 }
#else
    :: atomic { owner == token -> owner = 0; abandoned = 1; sleeper = 0; ok = 1 }
#endif
    :: owner != token
    OR_DIES
    fi;
    if
    :: ok ->
        if
        :: WakeAllOnWord()
        OR_DIES
        fi
    :: else
    fi;
    ok = 0
}

/* MutexObject::NoticeDeaths */
inline NoticeDeaths() {
    seen = owner;
    if
    :: seen != 0 && dead[seen] -> Abandon(seen)
    :: else
    fi;
    seen = 0;
#ifndef FAULT_ONLY_TAKE_ASKS_FOR_THE_HEIR
    NoticeDeadHeir()
#endif
}

/* MutexObject::MustGiveWay; `beside` says that an heir was seen */
inline MustGiveWay(yes) {
    seen = heir;
    beside = seen != 0 && seen != me;
    if
    :: !beside -> yes = 0
    :: beside && lastOwner != me -> yes = 1
    :: beside && lastOwner == me -> TurnIsOver(yes)
    fi
}

/* MutexObject::BeginOwnership: its writes are the owner's alone */
inline BeginOwnership() {
    if
    :: lastOwner != me ->
#ifdef FAULT_EACH_OWNER_BEGINS_A_TURN
        any = 1;
#else
        any = heir == 0 || heir == me;
#endif
        if
        :: any ->
            if
            :: atomic { turnAged = 0; turnOld = 0 }
            OR_DIES
            fi;
            turnTakes = 0
        :: else
        fi;
        any = 0;
        if
        :: lastOwner = me
        OR_DIES
        fi
    :: else
    fi;
    if
    :: turnTakes = (turnTakes < TAKES -> turnTakes + 1 : TAKES)
    OR_DIES
    fi
}

/* MutexObject::TryTake; not recursive here */
inline TryTake(outOfTurn) {
    atomic { got = 0; no = 0 }
    do
    :: owner != 0 || no -> break
    :: owner == 0 && !no ->
        beside = 0;
        if
        :: !(outOfTurn) -> MustGiveWay(no)
        :: else
        fi;
        if
        :: no
        :: atomic {
#ifdef FAULT_A_TAKE_IS_A_LOAD_AND_A_STORE
            !no ->
#else
            !no && owner == 0 ->
#endif
            /* one owner; a death is told to the first that comes after it, and to no other */
            assert(!has[1] && !has[2] && !has[3]);
            assert(abandoned == owed);
            abandoned = 0;
            owed = 0;
            owner = me;
            has[me] = 1;
            got = 1;
            passedBy = (beside && heir == seen && seen != TO_COME && !dead[seen] -> passedBy + 1 : passedBy);
            assert(passedBy <= TAKES);
            seen = 0
        }
        :: !no && owner != 0
        OR_DIES
        fi;
        seen = 0;
        if
        :: got -> BeginOwnership(); break
        :: else
        fi
    od;
    atomic { no = 0; beside = 0 }
}

/* MutexObject::ReleaseLevel, ReleaseSlowly: the turn is read before the release, the clock after it */
inline Release() {
    if
    :: atomic { owner == me && !sleeper -> owner = 0; has[me] = 0 }
    :: owner != me || sleeper ->
        no = turnTakes >= TAKES;
#ifdef FAULT_A_TURN_OF_MANY_TAKES_WAKES_NOBODY
        no = 0;
#endif
#ifdef FAULT_THE_CLOCK_IS_READ_BEFORE_THE_RELEASE
        no = no || turnAged;
#endif
        if
        :: atomic {
            assert(owner == me);
            owner = 0;
            has[me] = 0;
            any = sleeper;
#ifndef FAULT_THE_CLOCK_IS_READ_BEFORE_THE_RELEASE
            no = no || turnAged
#endif
        }
        OR_DIES
        fi;
        if
        :: any ->
            /* over, or so late that it is */
            if
            :: no
            :: !no -> any = 0
            :: !no
            fi
        :: else
        fi;
        if
        :: any ->
            if
            :: sleeper = 0
            OR_DIES
            fi;
            if
            :: WakeAllOnWord()
            OR_DIES
            fi
        :: else
        fi
    OR_DIES
    fi;
    atomic { any = 0; no = 0 }
}

/* MutexObject::WaitAsHeir */
inline WaitAsHeir() {
    do
    :: TryTake(1);
        if
        :: got -> break
        :: !got && kind == LIMIT -> expired = 1; NoticeDeaths(); TryTake(1); break
        :: !got && deaths > 0 -> NoticeDeaths()
        :: !got
        fi;
        seen = owner;
        if
        :: seen == 0
        :: seen != 0 ->
            if
            :: atomic { owner == seen -> sleeper = 1; ok = 1 }
            :: owner != seen
            OR_DIES
            fi;
            if
            :: ok ->
                any = lastOwner == seen;
                if
                :: any -> TurnIsOver(any)
                :: else
                fi;
                if
                :: atomic { owner == seen && sleeper -> sleepsOnWord[me] = 1 }
                :: owner != seen || !sleeper
                fi;
                /* woken, or the time is over: soon within a turn, else the one of the life check */
                if
                :: !sleepsOnWord[me]
                :: atomic { sleepsOnWord[me] && (!any || deaths > 0 || kind == LIMIT) -> sleepsOnWord[me] = 0 }
                OR_DIES
                fi
            :: else
            fi
        fi;
        atomic { any = 0; ok = 0; seen = 0 }
    od
}

/* MutexObject::SleepInQueue; `queued` says whether it may inherit */
inline SleepInQueue() {
    queued = 0;
#ifndef FAULT_THE_LINE_IS_READ_AFTER_THE_LOOK
    seen = queue;
#endif
    if
    :: queueSleepers++
    OR_DIES
    fi;
    if
    :: heir != 0 ->
#ifdef FAULT_THE_LINE_IS_READ_AFTER_THE_LOOK
        seen = queue;
#endif
        woken[me] = 0;
        if
        :: atomic { queue == seen -> sleepsOnQueue[me] = 1 }
        :: queue != seen
        fi;
        if
        :: atomic { !sleepsOnQueue[me] -> queued = woken[me]; woken[me] = 0 }
        :: atomic { sleepsOnQueue[me] && deaths > 0 -> sleepsOnQueue[me] = 0; queued = 1 }
        :: atomic { sleepsOnQueue[me] && kind == LIMIT -> sleepsOnQueue[me] = 0; expired = 1 }
        OR_DIES
        fi
    :: heir == 0
    fi;
    seen = 0;
    if
    :: queueSleepers = (queueSleepers != 0 -> queueSleepers - 1 : 0)
    OR_DIES
    fi
}

/* MutexObject::Take */
inline Take() {
    NoticeDeadHeir();
    queued = 0;
    do
    :: seen = heir;
        any = seen == 0 || (seen == TO_COME && queued) || (queued && seen != TO_COME && dead[seen]);
        if
        :: !any
        :: atomic { any && heir == seen -> heir = me; passedBy = 0 }
        :: any && heir != seen -> any = 0
        OR_DIES
        fi;
        seen = 0;
        if
        :: any -> any = 0; WaitAsHeir(); PassPlaceOn(me); break
        :: !any && kind == LIMIT && expired -> NoticeDeaths(); TryTake(1); break
        :: else -> SleepInQueue()
        fi
    od;
    queued = 0
}

/* WaitForOne, WaitForMutex */
inline Wait() {
    expired = 0;
    TryTake(0);
    if
    :: got
    :: !got && kind == POLLS ->
        /* A free mutex that nobody else wants is to be had, at the latest after the time for the killed. */
        atomic {
            alone = ALONE;
            if
            :: alone -> turnAged = 1; turnOld = 1
            :: else
            fi
        }
        NoticeDeaths();
        TryTake(0);
        assert(got || !alone);
        alone = 0
    :: !got && kind != POLLS -> Take()
    fi
}

proctype Process(byte me; byte kind; byte rounds) {
    byte seen, place;
    bit got, ok, any, no, queued, expired, beside, alone;
    do
    :: rounds == 0 -> break
    :: rounds > 0 ->
        Wait();
        if
        :: got -> Release(); rounds--
        :: !got && kind == LIMIT -> rounds--
        :: !got && kind != LIMIT
        fi;
        got = 0
    od;
    ended[me] = 1;
gone:
    atomic { seen = 0; place = 0; got = 0; ok = 0; any = 0; no = 0; queued = 0; expired = 0; beside = 0; alone = 0; rounds = 0 }
}

init {
    atomic {
        ended[1] = KIND1 == NONE;
        ended[2] = KIND2 == NONE;
        ended[3] = KIND3 == NONE;
        if :: KIND1 -> run Process(1, KIND1, ROUNDS1) :: else fi;
        if :: KIND2 -> run Process(2, KIND2, ROUNDS2) :: else fi;
        if :: KIND3 -> run Process(3, KIND3, ROUNDS3) :: else fi
    }
}
