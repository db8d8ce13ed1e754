/* A program in C that knows the public header alone: what works without a printer gives what is documented.
 */
#include <kestrel/sdk.h>
#include <stdio.h>

static int faults = 0;

static void Expect(int holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "failed: %s\n", what);
    ++faults;
}

int main(void) {
    uint8_t value = 7;
    uint32_t number = 7;
    kestrel_char text[8] = {1};
    Expect(GetSDKVersion() == 10, "GetSDKVersion returns 10");
    Expect(GetCopyQuality(&number, 100) == 0, "GetCopyQuality makes no object");
    Expect(GetLastResponseNum() == 100000, "a fresh object has the response number 100000");
    GetLastBadResponse(text, 8);
    Expect(text[0] == 0, "a fresh object has no bad response");
    Expect(GetFaxRedials(&value, 100) == 0 && value == 0, "no printer is selected");
    Expect(GetPhotoTrayState(&number, 100) == 1 && number == 0, "the photo tray needs no printer");
    Expect(sizeof(kestrel_bool) == 1 && sizeof(kestrel_char) == 2, "the basic types have their sizes");
    Expect(SDK_ERROR_PORT_LIST == 0xE0000015u, "the error codes are visible");
    return faults != 0;
}
