// Printers, their data and drivers, as the spooler lists and keeps them.
#include "spooler.h"

TEST_F(Spooler, Without_printers_the_list_is_empty_and_a_success) {
    const HANDLE gone = Add(Info(TEXT("ZR Gone"), TEXT("USB001")));
    ASSERT_TRUE(DeletePrinter(gone));
    EXPECT_TRUE(ClosePrinter(gone));
    EXPECT_EQ(Open(TEXT("ZR Gone")), nullptr);
    DWORD needed = 9;
    DWORD count = 9;
    EXPECT_TRUE(EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, nullptr, 0, &needed, &count));
    EXPECT_EQ(needed, 0u);
    EXPECT_EQ(count, 0u);
}

TEST_F(Spooler, The_list_is_in_order_of_the_names_and_asks_for_its_size_first) {
    AddForTest(TEXT("ZR Two"), TEXT("USB001"));
    AddForTest(TEXT("ZR One"), TEXT("USB002"));
    DWORD needed = 0;
    DWORD count = 9;
    for (const DWORD level : {1u, 2u}) {
        EXPECT_REFUSED(ERROR_INSUFFICIENT_BUFFER, EnumPrintersW(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS,
                                                                nullptr, level, nullptr, 0, &needed, &count));
        EXPECT_GT(needed, 0u);
        EXPECT_EQ(count, 0u);
    }
    EXPECT_EQ(Names(), (std::vector<WideText>{TEXT("ZR One"), TEXT("ZR Two")}));
    EXPECT_TRUE(EnumPrintersW(PRINTER_ENUM_CONNECTIONS, nullptr, 2, nullptr, 0, &needed, &count));
    EXPECT_EQ(needed, 0u);
}

TEST_F(Spooler, A_printer_keeps_what_it_was_added_with_and_takes_another_port) {
    const std::pair<const WCHAR*, DWORD> rows[] = {
        {TEXT("USB001"), 0x840}, {TEXT("IP_192.168.0.5"), 0x40}, {TEXT("USB001,USB002"), 0x800}};
    const HANDLE printer = AddForTest(TEXT("ZR Ports"), TEXT("LPT9"));
    for (const auto& [port, attributes] : rows) {
        PRINTER_INFO_2W info = Info(TEXT("ZR Ports"), port);
        info.Attributes = attributes;
        ASSERT_TRUE(SetPrinterW(printer, 2, reinterpret_cast<LPBYTE>(&info), 0));
        const auto record = Read(printer);
        EXPECT_EQ(WideText(record.front().pPrinterName), TEXT("ZR Ports"));
        EXPECT_EQ(WideText(record.front().pDriverName), kDriver);
        EXPECT_EQ(WideText(record.front().pPortName), port);
        EXPECT_EQ(record.front().Attributes & 0x840, attributes);
    }
}

TEST_F(Spooler, Printers_open_by_name_without_case) {
    AddForTest(TEXT("ZR Open"), TEXT("USB001"));
    const HANDLE printer = Open(TEXT("zr OPEN"));
    EXPECT_NE(printer, nullptr);
    EXPECT_EQ(WideText(Read(printer).front().pPrinterName), TEXT("ZR Open"));
    EXPECT_TRUE(ClosePrinter(printer));
    HANDLE server = nullptr;
    EXPECT_TRUE(OpenPrinterW(nullptr, &server, nullptr));
    EXPECT_TRUE(ClosePrinter(server));
}

TEST_F(Spooler, Names_that_are_no_printer_are_refused) {
    const std::pair<WideText, LONG> rows[] = {
        {TEXT("ZR None"), ERROR_INVALID_PRINTER_NAME},
        {TEXT("\\\\server\\printer"), ERROR_INVALID_PRINTER_NAME},
        {WideText(300, 'x'), ERROR_INVALID_PRINTER_NAME},
        {WideText(), ERROR_INVALID_PARAMETER},
        {TEXT(",XcvMonitor No Such Monitor"), ERROR_UNKNOWN_PORT},
    };
    for (const auto& [name, error] : rows)
        EXPECT_REFUSED(error, Open(name.c_str()));
}

TEST_F(Spooler, Handles_that_are_no_open_printer_are_refused) {
    AddForTest(TEXT("ZR Handle"), TEXT("USB001"));
    const HANDLE closed = Open(TEXT("ZR Handle"));
    ClosePrinter(closed);
    for (const HANDLE handle : {HANDLE(nullptr), closed}) {
        DWORD needed = 9;
        EXPECT_REFUSED(ERROR_INVALID_HANDLE, ClosePrinter(handle));
        EXPECT_REFUSED(ERROR_INVALID_HANDLE, GetPrinterW(handle, 2, nullptr, 0, &needed));
    }
}

TEST_F(Spooler, The_default_printer_is_told_with_the_size_that_its_name_takes) {
    AddForTest(TEXT("ZR Default"), TEXT("USB001"));
    ASSERT_TRUE(SetDefaultPrinterW(TEXT("ZR Default")));
    WCHAR name[16] = {};
    DWORD size = 10;
    EXPECT_REFUSED(ERROR_INSUFFICIENT_BUFFER, GetDefaultPrinterW(name, &size));
    EXPECT_EQ(size, 11u);
    EXPECT_TRUE(GetDefaultPrinterW(name, &size));
    EXPECT_EQ(WideText(name), TEXT("ZR Default"));
}

TEST_F(Spooler, A_printer_needs_an_installed_driver) {
    PRINTER_INFO_2W info = Info(TEXT("ZR Driverless"), TEXT("USB001"));
    info.pDriverName = Writable(TEXT("No Such Driver"));
    EXPECT_REFUSED(ERROR_UNKNOWN_PRINTER_DRIVER, Add(info));
    EXPECT_EQ(Open(TEXT("ZR Driverless")), nullptr);
}

TEST_F(Spooler, Printer_data_reports_by_its_result_and_leaves_the_last_error_alone) {
    const HANDLE printer = AddForTest(TEXT("ZR Data"), TEXT("USB001"));
    const LPWSTR name = Writable(TEXT("WakeUpLangMon"));
    BYTE byte = 1;
    DWORD number = 4711;
    DWORD type = 0;
    DWORD needed = 0;
    const auto get = [&](HANDLE from) {
        return static_cast<LONG>(GetPrinterDataW(from, name, &type, &byte, 1, &needed));
    };
    SetLastError(77);
    EXPECT_EQ(get(printer), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(SetPrinterDataW(printer, name, REG_BINARY, &byte, 1), 0u);
    byte = 0;
    EXPECT_EQ(get(printer), ERROR_SUCCESS);
    EXPECT_EQ(byte, 1);
    EXPECT_EQ(SetPrinterDataW(printer, name, REG_DWORD, reinterpret_cast<LPBYTE>(&number), sizeof number),
              0u);
    EXPECT_EQ(get(printer), ERROR_MORE_DATA);
    EXPECT_EQ(needed, sizeof number);
    EXPECT_EQ(GetLastError(), 77u);
    EXPECT_EQ(get(nullptr), ERROR_INVALID_HANDLE);
}

TEST_F(Spooler, The_driver_folder_is_there_with_its_subfolder_3) {
    DWORD needed = 0;
    EXPECT_REFUSED(ERROR_INSUFFICIENT_BUFFER,
                   GetPrinterDriverDirectoryW(nullptr, nullptr, 1, nullptr, 0, &needed));
    std::vector<WCHAR> folder(needed / sizeof(WCHAR));
    ASSERT_TRUE(GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(folder.data()),
                                           needed, &needed));
    EXPECT_EQ(folder.back(), WCHAR(0));
    const DWORD attributes = GetFileAttributesW((WideText(folder.data()) + TEXT("\\3")).c_str());
    ASSERT_NE(attributes, INVALID_FILE_ATTRIBUTES);
    EXPECT_NE(attributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
}
