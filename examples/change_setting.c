// Changes a setting while no other program can, and reads back what the printer made of it.
//
//     change_setting REDIALS [PRINTER]
#include "example.h"

// The library checks no ranges: the printer refuses what it does not support.
static int Change(uint8_t wanted) {
    uint8_t taken = 0;
    if (!SetFaxRedials(wanted, kTimeoutMs)) return Explain("the printer does not take this number");
    if (!GetFaxRedials(&taken, kTimeoutMs)) return Explain("the new number cannot be read back");
    printf("fax redials: %u\n", taken);
    return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
    const unsigned long redials = argc > 1 ? strtoul(argv[1], NULL, 10) : UINT8_MAX + 1;
    if (redials > UINT8_MAX) {
        fprintf(stderr, "usage: change_setting REDIALS [PRINTER]\n");
        return EXIT_FAILURE;
    }
    if (!Select(argc > 2 ? argv[2] : NULL)) return Explain("the printer cannot be selected");

    if (!Lock(kTimeoutMs)) return Explain("the printer cannot be locked");
    const int exitCode = Change((uint8_t)redials);
    // Whatever happened: a lock that is kept shuts all others out.
    if (!Unlock(kTimeoutMs)) return Explain("the printer cannot be unlocked");
    return exitCode;
}
