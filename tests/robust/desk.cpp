#include "desk.h"

#include <kestrel/sdk.h>
#include <windows.h>
// The spooler's header needs the one above.
#include <winspool.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "kwt/wide_text.h"

namespace {

bool AddDriver(WideText name) {
    WideText file = TEXT("ZRIJ9900DRV.DLL");
    DRIVER_INFO_3W info{};
    info.cVersion = 3;
    info.pName = name.data();
    info.pDriverPath = info.pDataFile = info.pConfigFile = file.data();
    return AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&info), APD_COPY_NEW_FILES) != FALSE;
}

bool AddPrinterP(WideText driver) {
    WideText name = TEXT("P");
    WideText port = TEXT("USB001");
    WideText processor = TEXT("WinPrint");
    PRINTER_INFO_2W info{};
    info.pPrinterName = name.data();
    info.pPortName = port.data();
    info.pDriverName = driver.data();
    info.pPrintProcessor = processor.data();
    info.Attributes = PRINTER_ATTRIBUTE_LOCAL | PRINTER_ATTRIBUTE_ENABLE_BIDI;
    const HANDLE printer = AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info));
    return printer != nullptr && ClosePrinter(printer);
}

}  // namespace

bool InstallDesk() {
    std::u16string folder(512, u'\0');
    DWORD bytes = 0;
    if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(folder.data()), 1024,
                                    &bytes))
        return false;
    const auto path = std::filesystem::path(folder.c_str()) / "3" / "ZRIJ9900.INI";
    std::filesystem::create_directories(path.parent_path());
    std::ifstream complete(DESK_CONFIGURATION);
    std::ofstream(path) << complete.rdbuf();
    return AddDriver(TEXT("ZR One")) && AddPrinterP(TEXT("ZR One"));
}

bool OnDesk(const std::function<void()>& body) {
    bool selected = false;
    std::thread([&] {
        selected = SelectPrinter(TEXT("P"));
        if (selected) body();
    }).join();
    return selected;
}
