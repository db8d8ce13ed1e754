// What Windows promises and winport keeps, but Wine 8 does not: it does not look whether a handle stands
// twice, lets a second printer of one name pass, and ends the process at a call of DeletePrinterDataW.
#include "handle_support.h"
#include "spooler.h"

namespace {

TEST(Waits, For_all_of_one_object_twice_is_refused_with_87) {
    const Handle event = AutoEvent(FreshName());
    const HANDLE twice[] = {event, event};
    EXPECT_REFUSED(87, WaitForMultipleObjects(2, twice, TRUE, 0) != WAIT_FAILED);
}

TEST_F(Spooler, Deleting_printer_data_says_whether_there_was_any) {
    const HANDLE printer = AddForTest(TEXT("ZR Delete"), TEXT("USB001"));
    const LPWSTR name = Writable(TEXT("WakeUpLangMon"));
    BYTE byte = 1;
    EXPECT_EQ(DeletePrinterDataW(printer, name), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    const DWORD refused = ERROR_INVALID_PARAMETER;
    EXPECT_EQ(SetPrinterDataW(printer, nullptr, REG_BINARY, &byte, 1), refused);
    EXPECT_EQ(SetPrinterDataW(printer, name, REG_BINARY, nullptr, 1), refused);
    EXPECT_EQ(SetPrinterDataW(printer, name, REG_BINARY, &byte, 1), 0u);
    EXPECT_EQ(SetPrinterDataW(printer, name, REG_BINARY, nullptr, 0), 0u);
    EXPECT_EQ(DeletePrinterDataW(printer, name), 0u);
    EXPECT_EQ(DeletePrinterDataW(printer, name), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(Spooler, A_printers_name_has_255_units_at_most_and_is_no_other_ones) {
    AddForTest(WideText(255, 'x').c_str(), TEXT("USB001"));
    EXPECT_REFUSED(ERROR_INVALID_PRINTER_NAME, Add(Info(WideText(256, 'x').c_str(), TEXT("USB001"))));
    EXPECT_REFUSED(ERROR_PRINTER_ALREADY_EXISTS, Add(Info(WideText(255, 'X').c_str(), TEXT("USB002"))));
}

}  // namespace
