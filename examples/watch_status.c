// Asks for the printer's status once a second and tells each change.
//
//     watch_status SECONDS [PRINTER]
#include "example.h"

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: watch_status SECONDS [PRINTER]\n");
        return EXIT_FAILURE;
    }
    if (!Select(argc > 2 ? argv[2] : NULL)) return Explain("the printer cannot be selected");

    DeviceStatusRecord before = {.state = UINT32_MAX};
    for (long seconds = strtol(argv[1], NULL, 10); seconds > 0; --seconds) {
        // The first call may take longer: it starts the status monitor.
        DeviceStatusRecord now;
        if (!GetStatus(&now, sizeof now)) return Explain("the status cannot be read");
        if (now.state != before.state || memcmp(now.text, before.text, sizeof now.text) != 0) {
            printf("state %u: ", (unsigned)now.state);
            PrintText(now.text, sizeof now.text / sizeof now.text[0]);
            printf("\n");
            fflush(stdout);
        }
        before = now;
        PauseOneSecond();
    }
    return EXIT_SUCCESS;
}
