// Prints how often a busy fax number is dialled again: cc example.c $(pkg-config --cflags --libs zrij9900sdk)

#include <kestrel/sdk.h>
#include <stdio.h>

int main(void) {
    uint8_t redials = 0;
    if (!SelectPrinter(u"Office") || !GetFaxRedials(&redials, 5000)) return 1;
    printf("%u\n", redials);
    return 0;
}
