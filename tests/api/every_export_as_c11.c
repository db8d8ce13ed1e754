/* Every exported function, its address taken and called from C, without a printer: each returns what is
   documented for that, within its time, and none touches memory that is not its own. */
#include <kestrel/sdk.h>
#include <stdio.h>
#include <string.h>

enum Export {
#define NAME(name) k##name,
#include "export_names.inc"
#undef NAME
    kExportCount
};
typedef void (*AnyFunction)(void);
static const struct {
    const char* name;
    AnyFunction address;
} kExports[] = {
#define NAME(name) {#name, (AnyFunction)name},
#include "export_names.inc"
#undef NAME
};

static int called[kExportCount];
static int faults = 0;

static void Expect(int export, int holds) {
    called[export] = 1;
    if (holds) return;
    fprintf(stderr, "%s does not return what it should\n", kExports[export].name);
    ++faults;
}

/* Room for every output: 60 records of 184 bytes are the most. */
static union {
    KestrelQuickDial records[KESTREL_SPEED_DIAL_RECORDS];
    KestrelAccessPoint points[KESTREL_MAX_ACCESS_POINTS];
    KestrelHost hosts[KESTREL_MAX_HOSTS];
    DeviceStatusRecord status;
    kestrel_char text[64];
} out;
static const kestrel_char kNoText[1] = {0};
enum { kMs = 50 };

/* Which do without a printer. */
static const int kAlwaysDone[] = {
#define CONSTANT(base, name, type, about) kGet##base,
#include "catalogue/settings.def"
    kSetStatusMonitorDisplayMode,
};

static int IsAlwaysDone(int export) {
    for (size_t i = 0; i < sizeof(kAlwaysDone) / sizeof(kAlwaysDone[0]); ++i)
        if (kAlwaysDone[i] == export) return 1;
    return 0;
}

int main(void) {
    Expect(kGetSDKVersion, GetSDKVersion() == 10);
    Expect(kGetLastResponseNum, GetLastResponseNum() == 100000);
    out.text[0] = 1;
    GetLastBadResponse(out.text, 64);
    Expect(kGetLastBadResponse, out.text[0] == 0);
    /* What is got afterwards is 0 as well, but 1 in a home of which nobody has changed it. */
    Expect(kSetStatusMonitorDisplayMode, SetStatusMonitorDisplayMode(0));
    /* Those that want the status monitor, which is not there, take up to 5 s each. */
#define EXPORT(name, parameters, arguments, values) Expect(k##name, (name values) == IsAlwaysDone(k##name));
#include "exports.inc"
    for (int export = 0; export < kExportCount; ++export) {
        if (called[export] && kExports[export].address != NULL) continue;
        fprintf(stderr, "%s is never called\n", kExports[export].name);
        ++faults;
    }
    printf("%d exports called\n", (int)kExportCount);
    return faults != 0;
}
