// The network port monitor, and what the spooler keeps in the registry.
#include <windows.h>
// The headers below need the one above.
#include <tcpxcv.h>
#include <winspool.h>

#include "registry_value.h"
#include "spooler.h"

namespace {

const WideText kPrint = TEXT("SYSTEM\\CurrentControlSet\\Control\\Print\\");

PORT_DATA_1 Port(const WideText& name) {
    PORT_DATA_1 port = {};
    name.copy(port.sztPortName, name.size());
    port.dwVersion = 1;
    port.dwProtocol = PROTOCOL_RAWTCP_TYPE;
    port.cbSize = sizeof port;
    WideText(TEXT("192.168.0.20")).copy(port.sztHostAddress, 12);
    port.dwPortNumber = 9100;
    return port;
}

// The status; the call itself must succeed.
DWORD Ask(const WCHAR* request, PORT_DATA_1 port, DWORD size = sizeof(PORT_DATA_1),
          DWORD access = SERVER_ACCESS_ADMINISTER) {
    HANDLE monitor = nullptr;
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, access};
    EXPECT_TRUE(OpenPrinterW(Writable(TEXT(",XcvMonitor Standard TCP/IP Port")), &monitor, &defaults));
    DWORD needed = 9;
    DWORD status = 9999;
    EXPECT_TRUE(
        XcvDataW(monitor, request, reinterpret_cast<LPBYTE>(&port), size, nullptr, 0, &needed, &status));
    EXPECT_EQ(needed, 0u);
    EXPECT_TRUE(ClosePrinter(monitor));
    return status;
}

std::vector<WideText> PortNames() {
    BYTE buffer[4096];
    DWORD needed = 0;
    DWORD count = 0;
    EXPECT_TRUE(EnumPortsW(nullptr, 1, buffer, sizeof buffer, &needed, &count));
    std::vector<WideText> names;
    for (DWORD i = 0; i < count; ++i)
        names.emplace_back(reinterpret_cast<const PORT_INFO_1W*>(buffer)[i].pName);
    return names;
}

}  // namespace

TEST(Ports, A_right_that_no_printer_and_no_server_has_is_refused_with_5) {
    for (const DWORD access : {0x40u, 0x100u, 0x02000000u, 0x10000000u, 0x80000000u}) {
        HANDLE server = nullptr;
        PRINTER_DEFAULTSW defaults = {nullptr, nullptr, access};
        EXPECT_REFUSED(ERROR_ACCESS_DENIED, OpenPrinterW(nullptr, &server, &defaults));
    }
}

TEST(Ports, A_network_port_is_added_once_and_kept) {
    EXPECT_EQ(Ask(TEXT("AddPort"), Port(TEXT("ZRIJT_192.168.0.20"))), 0u);
    EXPECT_EQ(Ask(TEXT("AddPort"), Port(TEXT("zrijt_192.168.0.20"))), 183u);
    EXPECT_EQ(PortNames().back(), TEXT("ZRIJT_192.168.0.20"));
    EXPECT_EQ(RegistryNumber(HKEY_LOCAL_MACHINE,
                             kPrint + TEXT("Monitors\\Standard TCP/IP Port\\Ports\\ZRIJT_192.168.0.20"),
                             TEXT("Version")),
              1);
}

TEST_F(Spooler, A_driver_of_another_machine_is_kept_with_its_version) {
    InstallDriver(TEXT("Elsewhere"), TEXT("linux arm64"));
    EXPECT_EQ(RegistryNumber(HKEY_LOCAL_MACHINE,
                             kPrint + TEXT("Environments\\Linux ARM64\\Drivers\\Version-3\\Elsewhere"),
                             TEXT("Version")),
              3);
}

TEST_F(Spooler, What_a_hand_spoiled_in_the_registry_is_read_as_if_it_were_not_there) {
    const HANDLE printer = AddForTest(TEXT("ZR Hand"), TEXT("USB001"));
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyW(HKEY_LOCAL_MACHINE, (kPrint + TEXT("Printers\\ZR Hand")).c_str(), &key),
              ERROR_SUCCESS);
    const auto write = [&](const WCHAR* name, DWORD type, const WCHAR* text, DWORD size) {
        EXPECT_EQ(RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE*>(text), size), 0);
    };
    write(TEXT("Description"), REG_SZ, TEXT("abc"), 4);  // without its end
    write(TEXT("Location"), REG_SZ, TEXT(""), 0);
    write(TEXT("Parameters"), REG_BINARY, TEXT("abc"), 8);
    write(TEXT("Attributes"), REG_BINARY, TEXT("abc"), 4);
    write(TEXT("StartTime"), REG_DWORD, TEXT("abc"), 2);
    EXPECT_EQ(RegDeleteValueW(key, TEXT("Priority")), 0);
    RegCloseKey(key);
    const auto record = Read(printer);
    EXPECT_EQ(WideText(record.front().pComment), TEXT("ab"));
    EXPECT_EQ(WideText(record.front().pLocation) + record.front().pParameters, WideText());
    EXPECT_EQ(record.front().Attributes | record.front().StartTime | record.front().Priority, 0u);
}

TEST(Ports, What_describes_no_port_is_refused_by_the_status) {
    const std::vector<WideText> before = PortNames();
    const std::pair<DWORD, std::function<void(PORT_DATA_1&)>> rows[] = {
        {87, [](PORT_DATA_1& port) { port.sztPortName[0] = 0; }},
        {87, [](PORT_DATA_1& port) { port.sztHostAddress[0] = 0; }},
        {87, [](PORT_DATA_1& port) { port.dwProtocol = 3; }},
        {124, [](PORT_DATA_1& port) { port.dwVersion = 2; }},
        {13, [](PORT_DATA_1& port) { port.cbSize = 963; }},
        {13, [](PORT_DATA_1& port) { std::fill_n(port.sztPortName, 64, WCHAR('x')); }},
    };
    for (const auto& [status, spoil] : rows) {
        PORT_DATA_1 port = Port(TEXT("Spoiled"));
        spoil(port);
        EXPECT_EQ(Ask(TEXT("AddPort"), port), status);
    }
    EXPECT_EQ(Ask(TEXT("AddPort"), Port(TEXT("Short")), 963), 13u);
    EXPECT_EQ(Ask(TEXT("PaintPort"), Port(TEXT("Unknown"))), 87u);
    EXPECT_EQ(Ask(TEXT("AddPort"), Port(TEXT("User")), sizeof(PORT_DATA_1), PRINTER_ACCESS_USE), 5u);
    DWORD needed = 0;
    DWORD status = 0;
    EXPECT_REFUSED(ERROR_INVALID_HANDLE,
                   XcvDataW(nullptr, TEXT("AddPort"), nullptr, 0, nullptr, 0, &needed, &status));
    EXPECT_EQ(PortNames(), before) << "a refused port was kept";
}
