// Gives the printer new firmware and waits until it reports another version.
//
//     upgrade_firmware FILE [PRINTER]
#include "example.h"

enum { kPatienceSeconds = 300 };

typedef struct Versions {
    uint32_t lagoon;
    uint32_t customer;
    kestrel_char printer[64];
} Versions;

static int Read(Versions* versions) {
    // The call clears what it writes, up to the text's terminator: the rest must be the same to be compared.
    memset(versions, 0, sizeof *versions);
    return GetFWVersion(&versions->lagoon, &versions->customer, versions->printer, kTimeoutMs);
}

static void Print(const char* label, const Versions* versions) {
    printf("%s: %u, %u, ", label, (unsigned)versions->lagoon, (unsigned)versions->customer);
    PrintText(versions->printer, sizeof versions->printer / sizeof versions->printer[0]);
    printf("\n");
    fflush(stdout);
}

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: upgrade_firmware FILE [PRINTER]\n");
        return EXIT_FAILURE;
    }
    if (!Select(argc > 2 ? argv[2] : NULL)) return Explain("the printer cannot be selected");

    Versions before;
    if (!Read(&before)) return Explain("the firmware's version cannot be read");
    Print("before", &before);

    kestrel_char file[4096];
    ToLibrary(file, sizeof file / sizeof file[0], argv[1]);
    if (!UpgradeFW(file)) return Explain("the printer cannot be upgraded");

    // The printer goes on by itself, and meanwhile may not answer.
    Versions now;
    for (int seconds = 0; seconds < kPatienceSeconds; ++seconds) {
        PauseOneSecond();
        if (!Read(&now) || memcmp(&now, &before, sizeof now) == 0) continue;
        Print("after", &now);
        return EXIT_SUCCESS;
    }
    fprintf(stderr, "the printer reports no other version after %d s; look at its display\n",
            kPatienceSeconds);
    return EXIT_FAILURE;
}
