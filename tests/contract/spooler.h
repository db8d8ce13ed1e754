// A driver and printers for a test, which are gone after it.
#pragma once

#include <windows.h>
#include <winspool.h>

#include "support.h"

inline constexpr WCHAR kDriver[] = TEXT("Kestrel Contract Driver");

// The driver is installed and printers that a test adds are removed after it.
class Spooler : public testing::Test {
  protected:
    Spooler() {
        // Of a run that ended in the middle: the registry of a Wine prefix outlives it.
        for (const WideText& name : Names())
            Remove(Open(name.c_str()));
        InstallDriver(kDriver, nullptr);
    }
    ~Spooler() override {
        for (const HANDLE printer : added_)
            Remove(printer);
    }

    static void Remove(HANDLE printer) {
        DeletePrinter(printer);
        ClosePrinter(printer);
    }
    // For this machine, or the kind of machine that is named.
    static void InstallDriver(const WCHAR* name, const WCHAR* environment) {
        DRIVER_INFO_3W driver = {};
        driver.cVersion = 3;
        driver.pName = Writable(name);
        driver.pEnvironment = Writable(environment);
        driver.pDriverPath = driver.pConfigFile = Writable(TEXT("wineps.drv"));
        driver.pDataFile = Writable(TEXT("x"));
        EXPECT_TRUE(AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&driver),
                                        APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY));
    }

    static PRINTER_INFO_2W Info(const WCHAR* name, const WCHAR* port) {
        PRINTER_INFO_2W info = {};
        info.pPrinterName = Writable(name);
        info.pPortName = Writable(port);
        info.pDriverName = Writable(kDriver);
        info.pPrintProcessor = Writable(TEXT("WinPrint"));
        info.pDatatype = Writable(TEXT("RAW"));
        info.Attributes = PRINTER_ATTRIBUTE_LOCAL | PRINTER_ATTRIBUTE_ENABLE_BIDI;
        return info;
    }
    static HANDLE Add(PRINTER_INFO_2W info) {
        return AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info));
    }
    HANDLE AddForTest(const WCHAR* name, const WCHAR* port) {
        const HANDLE printer = Add(Info(name, port));
        EXPECT_NE(printer, nullptr) << "last error " << GetLastError();
        if (printer != nullptr) added_.push_back(printer);
        return printer;
    }

    static HANDLE Open(const WCHAR* name) {
        HANDLE printer = nullptr;
        PRINTER_DEFAULTSW defaults = {nullptr, nullptr, PRINTER_ALL_ACCESS};
        return OpenPrinterW(Writable(name), &printer, &defaults) ? printer : nullptr;
    }

    // Of all local printers, as they are listed.
    static std::vector<WideText> Names() {
        DWORD needed = 0;
        DWORD count = 0;
        EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, nullptr, 0, &needed, &count);
        std::vector<PRINTER_INFO_2W> buffer(needed / sizeof(PRINTER_INFO_2W) + 1);
        EXPECT_TRUE(EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, reinterpret_cast<LPBYTE>(buffer.data()),
                                  needed, &needed, &count));
        std::vector<WideText> names;
        for (DWORD i = 0; i < count; ++i)
            names.emplace_back(buffer[i].pPrinterName);
        return names;
    }

    // Its record, and behind it what that points to.
    static std::vector<PRINTER_INFO_2W> Read(HANDLE printer) {
        DWORD needed = 0;
        EXPECT_REFUSED(ERROR_INSUFFICIENT_BUFFER, GetPrinterW(printer, 2, nullptr, 0, &needed));
        EXPECT_GE(needed, sizeof(PRINTER_INFO_2W));
        std::vector<PRINTER_INFO_2W> record(needed / sizeof(PRINTER_INFO_2W) + 1);
        EXPECT_TRUE(GetPrinterW(printer, 2, reinterpret_cast<LPBYTE>(record.data()), needed, &needed));
        return record;
    }

    std::vector<HANDLE> added_;
};
