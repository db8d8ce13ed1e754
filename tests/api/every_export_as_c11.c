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

#define FAILS(name, arguments) Expect(k##name, (name arguments) == 0)
#define SUCCEEDS(name, arguments) Expect(k##name, (name arguments) == 1)

/* Room for every output: 60 records of 184 bytes are the most. */
static union {
    uint8_t bytes[12000];
    uint32_t number;
    KestrelQuickDial records[KESTREL_SPEED_DIAL_RECORDS];
    KestrelAccessPoint points[KESTREL_MAX_ACCESS_POINTS];
    KestrelHost hosts[KESTREL_MAX_HOSTS];
    DeviceStatusRecord status;
    kestrel_char text[64];
} out;
static const kestrel_char kNoText[1] = {0};
enum { kMs = 50 };

/* What a setter is given, by its type in the table of settings. */
#define VALUE_Bool 1
#define VALUE_U8 1
#define VALUE_S8 (-1)
#define VALUE_U16 1
#define VALUE_Enum 0
#define VALUE_Text kNoText
#define VALUE_Address 1

static void CallSettings(void) {
#define GETTER(function, base, type, words, bytes) FAILS(function, ((void*)&out, kMs));
#define SETTER(function, base, type, words) FAILS(function, (VALUE_##type, kMs));
#define CONSTANT(base, name, type, about) SUCCEEDS(Get##base, ((void*)&out, kMs));
#include "catalogue/settings.def"
    FAILS(GetWirelessSecurityKey, (0, out.text, kMs));
    FAILS(SetWirelessSecurityKey, (0, kNoText, kMs));
}

static void CallUnsupported(void) {
    kestrel_bool flag = 0;
    FAILS(GetWirelessFragmentationThreshold, (&out.number, kMs));
    FAILS(SetWirelessFragmentationThreshold, (1, kMs));
    FAILS(GetWirelessRTSThreshold, (&out.number, kMs));
    FAILS(SetWirelessRTSThreshold, (1, kMs));
    FAILS(GetWirelessContinuousTransmit, (&flag, kMs));
    FAILS(SetWirelessContinuousTransmit, (1, kMs));
    FAILS(SetAutoIPDefaultGateway, (1, kMs));
    FAILS(SetDHCPIPAddress, (1, kMs));
    FAILS(SetDHCPSubnetMask, (1, kMs));
    FAILS(SetDHCPDefaultGateway, (1, kMs));
    FAILS(GetEthernetConnectStrength, (&out.number, kMs));
    FAILS(GetWirelessConnectStrength, (&out.number, kMs));
    FAILS(GetSelectedScanHost, (out.text, kMs));
    FAILS(GetSelectedTransferHost, (out.text, kMs));
}

static void CallSession(void) {
    uint32_t length = 0;
    Expect(kGetSDKVersion, GetSDKVersion() == 10);
    Expect(kGetLastResponseNum, GetLastResponseNum() == 100000);
    out.text[0] = 1;
    GetLastBadResponse(out.text, 64);
    Expect(kGetLastBadResponse, out.text[0] == 0);
    FAILS(SelectPrinter, (kNoText));
    FAILS(SendCmd, ("X?", 2, &out, sizeof(out), &length, kMs));
    FAILS(GetStatus, (&out.status, sizeof(out.status) - 1));
    FAILS(Lock, (kMs));
    FAILS(Unlock, (kMs));
    FAILS(Cancel, ());
    FAILS(EnableCache, (1));
    FAILS(CalibrateHead, ());
    FAILS(PrintTestPage, ());
    FAILS(CheckNozzle, ());
    FAILS(AlignHead, ());
    FAILS(VTOE, ());
    FAILS(CleanHead, (1));
}

static void CallDevice(void) {
    uint32_t number[5] = {0};
    kestrel_bool flag = 0;
    FAILS(GetQuickDialNumbers, (out.records, kMs));
    FAILS(SetQuickDialNumbers, (out.records, kMs));
    FAILS(GetQuickDialButtons, (out.records, kMs));
    FAILS(SetQuickDialButtons, (out.records, kMs));
    FAILS(GetQuickDialButton, (0, out.records, kMs));
    FAILS(SetQuickDialButton, (0, out.records, kMs));
    FAILS(StartSearchForAccessPoints, (kMs));
    FAILS(GetNumAccessPoints, (number, kMs));
    FAILS(GetAccessPoints, (out.points, kMs));
    FAILS(SetPing, (1, 1, 1, kMs));
    FAILS(GetMDNSHostList, (out.hosts, kMs));
    FAILS(GetNumOfPingExecuted, (number, kMs));
    FAILS(GetNumOfPingSuccess, (number, kMs));
    FAILS(GetDeviceTime, (number, number + 1, number + 2, number + 3, number + 4, kMs));
    FAILS(SetDeviceTime, (2026, 1, 1, 0, 0, kMs));
    FAILS(GetCurrentTimeRTC, (out.text, kMs));
    FAILS(SetCurrentTimeRTC, (kMs));
    FAILS(GetFWVersion, (number, number + 1, out.text, kMs));
    FAILS(GetCapRBNVer, (number, kMs));
    FAILS(GetCapTOFEdgeOverride, (&flag, kMs));
    FAILS(GetCapFWUpgrade, (&flag, kMs));
    FAILS(UpgradeFW, (kNoText));
    FAILS(RefreshFWCapabilities, (kMs));
    FAILS(GetCapabilities, (&out, sizeof(out), kMs));
    FAILS(GetVendorProductIDs, (number, number + 1, kMs));
    FAILS(GetGCPConfigured, (&flag, kMs));
    FAILS(GetPennantConfigured, (&flag, kMs));
}

/* Without a status monitor: up to 5 s each. */
static void CallHost(void) {
    FAILS(ShowStatusMonitor, ());
    FAILS(ShowAboutBox, ());
    FAILS(ShowMaintenance, ());
    SUCCEEDS(SetStatusMonitorDisplayMode, (0));
    FAILS(GetStatusMonitorDisplayMode, ());
    FAILS(OrderSupplies, ());
    FAILS(AddNetPort, (kNoText, 9100, NULL));
    FAILS(AddDriverInstance, (kNoText, kNoText, kNoText, kNoText, 0));
    FAILS(AddDriverFiles, (kNoText, kNoText));
}

int main(void) {
    CallSession();
    CallSettings();
    CallUnsupported();
    CallDevice();
    CallHost();
    for (int export = 0; export < kExportCount; ++export) {
        if (called[export] && kExports[export].address != NULL) continue;
        fprintf(stderr, "%s is never called\n", kExports[export].name);
        ++faults;
    }
    printf("%d exports called\n", (int)kExportCount);
    return faults != 0;
}
