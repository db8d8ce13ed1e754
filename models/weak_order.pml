/* Memory of a processor that keeps its promises and no more. A store waits in its thread's buffer and reaches memory in
 * any order, but that of a release comes after all that the thread stored before it. A load takes its own thread's
 * store, else memory's; loads that may change places are written as a choice. A read-modify-write acts on memory: one
 * that releases waits until the thread's buffer is empty (FENCE). Each place is stored once or waits for itself. */

#ifndef THREADS
#define THREADS 2
#endif
#define PLACES 4

byte memory[PLACES];
byte pending[THREADS];           /* a bit for each place */
byte buffered[THREADS * PLACES]; /* its value */
byte behind[THREADS * PLACES];   /* the stores that come first */

#define AT(place) (me * PLACES + place)
#define BIT(place) (1 << place)
#define FENCE (pending[me] == 0)

inline StoreBehind(place, value, first) {
    atomic {
        (pending[me] & BIT(place)) == 0 ->
        behind[AT(place)] = first;
        buffered[AT(place)] = value;
        pending[me] = pending[me] | BIT(place)
    }
}

inline StoreRelaxed(place, value) {
    StoreBehind(place, value, 0)
}

inline StoreRelease(place, value) {
    StoreBehind(place, value, pending[me])
}

inline Load(place, into) {
    into = (pending[me] & BIT(place) -> buffered[AT(place)] : memory[place])
}

#define REACHES(place)                                                                         \
    :: d_step {                                                                                \
        (pending[me] & BIT(place)) != 0 && (behind[AT(place)] & pending[me]) == 0 ->           \
        memory[place] = buffered[AT(place)];                                                   \
        pending[me] = pending[me] & (255 - BIT(place));                                        \
        buffered[AT(place)] = 0;                                                               \
        behind[AT(place)] = 0                                                                  \
    }

proctype Buffer(byte me) {
end:
    do
    REACHES(0)
    REACHES(1)
    REACHES(2)
    REACHES(3)
    od
}
