// Reads settings of three kinds: a number, a word out of a list, a text.
//
//     read_settings [PRINTER]
#include "example.h"

int main(int argc, char** argv) {
    if (!Select(argc > 1 ? argv[1] : NULL)) return Explain("the printer cannot be selected");

    uint8_t redials = 0;
    if (!GetFaxRedials(&redials, kTimeoutMs)) return Explain("the fax redials cannot be read");
    printf("fax redials: %u\n", redials);

    // Words are numbers of an enumeration in sdk_types.h.
    uint32_t quality = 0;
    if (!GetPhotoQuality(&quality, kTimeoutMs)) return Explain("the photo quality cannot be read");
    printf("photos are printed as presentations: %s\n",
           quality == KESTREL_PHOTO_QUALITY_PRESENTATION ? "yes" : "no");

    // The size of a text's buffer stands with its function: here 128 bytes, which are 64 characters.
    kestrel_char name[64];
    if (!GetFriendlyName(name, kTimeoutMs)) return Explain("the printer's name cannot be read");
    printf("name: ");
    PrintText(name, sizeof name / sizeof name[0]);
    printf("\n");
    return EXIT_SUCCESS;
}
