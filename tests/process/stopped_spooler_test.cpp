// What of the spooler winport alone shows: a value in the registry stops it, and the data of a printer can be
// deleted.
#include "installed_status_monitor.h"
#include "kwt/printer_handle.h"
#include "recording_monitor.h"
// The spooler's header needs the ones above.
#include <winspool.h>

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

TEST_F(StoppedSpooler, Starts_no_status_monitor_selects_no_printer_and_says_why) {
    Configure();
    RecordingMonitor language;
    WithPrinter([] {
        for (const auto& [stopped, error] : {std::pair(1u, 1722u), {1727u, 1727u}, {5u, 5u}}) {
            Stop(stopped);
            DeviceStatusRecord record;
            EXPECT_EQ(error, Ended(GetStatus(&record, sizeof(record))));
            EXPECT_EQ(100000u, GetLastResponseNum()) << "what was before is forgotten";
            kestrel_char port[64] = {};
            EXPECT_EQ(error, Ended(AddNetPort(TEXT("host"), 9100, port)));
            EXPECT_EQ(1460u, Ended(ShowStatusMonitor())) << "the ping decides";
            EXPECT_EQ(error, Ended(SelectPrinter(kPrinter)));
            Stop(0);
            EXPECT_EQ(kDone, Ended(SelectPrinter(kPrinter)));
        }
    });
    EXPECT_EQ(3, StopMonitor());
}

TEST_F(StoppedSpooler, That_runs_has_a_selection_wake_the_language_monitor_and_forget_its_last_answer) {
    WideText printer = kPrinter;
    WideText value = TEXT("WakeUpLangMon");
    PRINTER_DEFAULTSW access = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    HANDLE handle = nullptr;
    ASSERT_TRUE(OpenPrinterW(printer.data(), &handle, &access));
    const std::function<void()> wakers[] = {
        [] { EXPECT_FALSE(kwt::WakeUpLanguageMonitor(kPrinter)) << "nobody answers"; },
        [] { WithPrinter([] {}); },
    };
    for (const auto& wake : wakers) {
        BYTE answer = 1;
        DWORD needed = 0;
        EXPECT_EQ(0u, SetPrinterDataW(handle, value.data(), REG_BINARY, &answer, 1));
        wake();
        EXPECT_EQ(2u, GetPrinterDataW(handle, value.data(), nullptr, &answer, 1, &needed));
    }
    ClosePrinter(handle);
}

}  // namespace
