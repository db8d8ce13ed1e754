// Shows the speed-dial list, and first puts a fax number into it if one is given.
//
//     address_book [-p PRINTER] [NUMBER NAME FAX]
#include "example.h"

// The list is read and written as a whole.
static KestrelQuickDial book[KESTREL_SPEED_DIAL_RECORDS];

static void Show(void) {
    for (size_t i = 0; i < KESTREL_SPEED_DIAL_RECORDS; ++i) {
        if (book[i].addressType == KESTREL_ADDRESS_TYPE_NONE) continue;
        printf("%2u  %s  ", (unsigned)i, book[i].addressType == KESTREL_ADDRESS_TYPE_FAX ? "fax  " : "email");
        PrintText(book[i].name, sizeof book[i].name / sizeof book[i].name[0]);
        printf(": ");
        PrintText(book[i].address, sizeof book[i].address / sizeof book[i].address[0]);
        printf("\n");
    }
}

int main(int argc, char** argv) {
    const char* printer = NULL;
    if (argc > 2 && strcmp(argv[1], "-p") == 0) {
        printer = argv[2];
        argc -= 2;
        argv += 2;
    }
    const unsigned long number = argc == 4 ? strtoul(argv[1], NULL, 10) : 0;
    if ((argc != 1 && argc != 4) || number >= KESTREL_SPEED_DIAL_RECORDS) {
        fprintf(stderr, "usage: address_book [-p PRINTER] [NUMBER NAME FAX]; NUMBER is 0 to %d\n",
                KESTREL_SPEED_DIAL_RECORDS - 1);
        return EXIT_FAILURE;
    }
    if (!Select(printer)) return Explain("the printer cannot be selected");

    // The time-out is that of the whole list, which takes many exchanges.
    if (!GetQuickDialNumbers(book, 12 * kTimeoutMs)) return Explain("the list cannot be read");
    if (argc == 4) {
        KestrelQuickDial* const entry = &book[number];
        entry->addressType = KESTREL_ADDRESS_TYPE_FAX;
        ToLibrary(entry->name, sizeof entry->name / sizeof entry->name[0], argv[2]);
        ToLibrary(entry->address, sizeof entry->address / sizeof entry->address[0], argv[3]);
        if (!SetQuickDialNumbers(book, kTimeoutMs)) return Explain("the list cannot be written");
    }
    Show();
    return EXIT_SUCCESS;
}
