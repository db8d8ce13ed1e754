// Ten lines of a stranger: the printer "Office" gets nine redials and is asked for them.
#include <kestrel/sdk.h>
#include <stdio.h>

int main(void) {
    uint8_t redials = 0;
    if (!SelectPrinter(u"Office") || !SetFaxRedials(9, 5000) || !GetFaxRedials(&redials, 5000)) return 1;
    printf("%u\n", redials);
    return 0;
}
