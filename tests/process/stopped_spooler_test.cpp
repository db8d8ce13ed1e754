// A spooler that is down. On Windows a stand-in beside this program can be; on winport the spooler itself.
#include <kestrel/sdk.h>
#include <windows.h>

#include "installed_status_monitor.h"

namespace {

class StoppedSpooler : public InstalledStatusMonitor {
  protected:
    ~StoppedSpooler() override { Stop(0); }

    // `error`: 1 for the usual one.
    static void Stop(DWORD error) {
        HKEY key = nullptr;
        ASSERT_EQ(ERROR_SUCCESS,
                  RegCreateKeyW(HKEY_LOCAL_MACHINE, TEXT("SYSTEM\\CurrentControlSet\\Control\\Print"), &key));
        RegSetValueExW(key, TEXT("Stopped"), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&error),
                       sizeof(error));
        RegCloseKey(key);
    }
};

TEST_F(StoppedSpooler, Starts_no_status_monitor_and_says_why) {
    Configure();
    WithPrinter([] {
        const struct {
            DWORD stopped;
            uint32_t error;
        } rows[] = {{1, 1722}, {1727, 1727}};
        for (const auto& row : rows) {
            Stop(row.stopped);
            DeviceStatusRecord record;
            EXPECT_FALSE(GetStatus(&record, sizeof(record)));
            EXPECT_EQ(row.error, GetLastError());
            EXPECT_FALSE(ShowStatusMonitor());
            EXPECT_EQ(1460u, GetLastError()) << "the ping decides";
            Stop(0);
        }
    });
    EXPECT_EQ(3, StopMonitor());
}

TEST_F(StoppedSpooler, Selects_no_printer_until_it_runs_again) {
    WithPrinter([] {
        Stop(1);
        EXPECT_FALSE(SelectPrinter(kPrinter));
        EXPECT_EQ(1722u, GetLastError());
        Stop(0);
        EXPECT_TRUE(SelectPrinter(kPrinter)) << GetLastError();
    });
}

}  // namespace
