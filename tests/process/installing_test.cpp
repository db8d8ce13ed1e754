// Ports, drivers and printers as a set-up program installs them through the library, and the tool that does
// it, as the system's own does on Windows.
#include <winspool.h>

#include "installed_printer.h"
#include "registry_value.h"

namespace {

namespace fs = std::filesystem;

std::string Utf16(const std::string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char c : text)
        bytes.append({c, '\0'});
    return bytes;
}

const WideText kPrintKey = TEXT("SYSTEM\\CurrentControlSet\\Control\\Print\\");
#ifdef __aarch64__
const WideText kDrivers = TEXT("Environments\\Linux ARM64\\Drivers");
#else
const WideText kDrivers = TEXT("Environments\\Linux x64\\Drivers");
#endif

// What the spooler keeps, of plain characters.
std::string SpoolerText(const WideText& path, const WCHAR* name) {
    std::string text = RegistryValue(HKEY_LOCAL_MACHINE, kPrintKey + path, name);
    std::erase(text, '\0');
    return text;
}
std::string DriverText(const WideText& model, const WCHAR* name) {
    return SpoolerText(kDrivers + TEXT("\\Version-3\\") + model, name);
}
std::string PrinterText(const WideText& printer, const WCHAR* name) {
    return SpoolerText(TEXT("Printers\\") + printer, name);
}

class Installing : public testing::Test {
  protected:
    ~Installing() override { RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kPrintKey + kDrivers).c_str()); }

    const std::string inf_ = FileText(TWO_KINDS_INF);

    static std::string Write(const std::string& name, const std::string& bytes) {
        const fs::path path = fs::path(std::getenv("KESTREL_TEST_FOLDER")) / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path.string();
    }

    static ProgramResult Run(Words words, const char* entry = "printui.dll,PrintUIEntry") {
        words.insert(words.begin(), {"/bin/sh", "-c", "exec \"$0\" \"$@\" 2>&1", INSTALL_TOOL, entry});
        return RunProgram(words);
    }
};

TEST_F(Installing, A_network_port_is_named_for_its_address_and_added) {
    const std::tuple<WideText, WideText, WideText> rows[] = {
        {TEXT(""), TEXT("192.168.0.20"), TEXT("ZRIJT_192.168.0.20")},
        {TEXT(""), TEXT("printer.example"), TEXT("printer.example")},
        {TEXT("Office port"), TEXT("192.168.0.21"), TEXT("Office port")},
        {TEXT(""), TEXT("\t 1.+2.\r-3.4x"), TEXT("ZRIJT_\t 1.+2.\r-3.4x")},
        {TEXT(""), TEXT("1.2.3"), TEXT("1.2.3")},
        {TEXT(""), TEXT("1.2,3.4"), TEXT("1.2,3.4")},
        {WideText(63, 'p'), WideText(48, 'h'), WideText(63, 'p')},
    };
    for (const auto& [wanted, host, name] : rows) {
        kestrel_char port[64] = {};
        wanted.copy(port, wanted.size());
        EXPECT_EQ(kDone, Ended(AddNetPort(host.c_str(), 9100, port)));
        EXPECT_EQ(name, port);
        const WideText path = TEXT("Monitors\\Standard TCP/IP Port\\Ports\\") + name;
        EXPECT_EQ(host, Widened(SpoolerText(path, TEXT("HostName"))));
        EXPECT_EQ(9100, RegistryNumber(HKEY_LOCAL_MACHINE, kPrintKey + path, TEXT("PortNumber")));
    }
}

TEST_F(Installing, Driver_printer_and_default_printer_are_asked_of_the_system) {
    const WideText inf = Widened(Write("with blank.inf", inf_));
    const WCHAR* const model = TEXT("Model 32");
    const HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW);
    SetCursor(arrow);
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
    PostThreadMessageW(GetCurrentThreadId(), 1024, 0, 0);
    EXPECT_TRUE(AddDriverFiles(inf.c_str(), model)) << GetLastError();
    EXPECT_EQ("Model_32", DriverText(model, TEXT("Driver")));
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << "the wait dispatches messages";
    EXPECT_EQ(arrow, SetCursor(arrow)) << "given back";
    for (const auto& [name, port, isDefault] :
         {std::tuple(TEXT("Home"), TEXT("LPT1:"), false), {TEXT("Office"), TEXT("LPT2:"), true}}) {
        EXPECT_TRUE(AddDriverInstance(name, inf.c_str(), model, port, isDefault));
        EXPECT_EQ("Model 32", PrinterText(name, TEXT("Printer Driver")));
        EXPECT_EQ(port, Widened(PrinterText(name, TEXT("Port"))));
        WCHAR chosen[64] = {};
        DWORD size = 64;
        GetDefaultPrinterW(chosen, &size);
        EXPECT_EQ(isDefault, chosen == WideText(name));
        if (isDefault) {
            EXPECT_EQ(size, std::size(L"Office"));
        }
    }
}

TEST_F(Installing, What_is_missing_or_too_long_has_its_code) {
    const WideText file = Widened(Write("a.inf", inf_));
    const WCHAR* const inf = file.c_str();
    const WCHAR* const text = TEXT("x");
    WCHAR port[64] = {};
    const std::pair<uint32_t, std::function<kestrel_bool()>> rows[] = {
        {87, [&] { return AddNetPort(nullptr, 1, port); }},
        {87, [&] { return AddNetPort(text, 1, nullptr); }},
        {87, [&] { return AddNetPort(WideText(49, 'h').c_str(), 1, port); }},
        {87, [&] { return AddNetPort(text, 1, WideText(64, 'p').data()); }},
        {87, [&] { return AddDriverFiles(nullptr, text); }},
        {87, [&] { return AddDriverFiles(inf, TEXT("")); }},
        {2, [&] { return AddDriverFiles(text, text); }},
        {1801, [&] { return AddDriverInstance(TEXT(""), inf, text, text, 0); }},
        {87, [&] { return AddDriverInstance(text, inf, text, nullptr, 0); }},
        {2, [&] { return AddDriverInstance(text, text, text, text, 0); }},
    };
    for (const auto& [error, call] : rows)
        EXPECT_EQ(error, Ended(call()));
}

TEST_F(Installing, A_driver_is_taken_from_every_encoding_and_from_shared_sections) {
    const WideText nine = TEXT("ZR \"Nine\" 9900");
    for (const std::string& bytes : {inf_, Utf16(inf_), "\xEF\xBB\xBF" + inf_}) {
        const std::string inf = Write("a.inf", bytes);
        EXPECT_EQ(Run({"/ia", "/f", inf, "/m", "zr \"nine\" 9900"}).code, 0);
        EXPECT_EQ(DriverText(nine, TEXT("Driver")), "DRV.DLL");
        EXPECT_EQ(DriverText(nine, TEXT("Data File")), "DRV.INI");
        EXPECT_EQ(DriverText(nine, TEXT("Configuration File")), "DRV.DLL");
        EXPECT_EQ(DriverText(nine, TEXT("Monitor")), "ZR Monitor");
        EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kPrintKey + kDrivers).c_str()), 0);
    }
}

TEST_F(Installing, An_installed_driver_is_kept_when_asked_and_else_replaced) {
    const WideText model = TEXT("Model 32");
    const std::string inf = Write("a.inf", inf_);
    EXPECT_EQ(Run({"/ia", "/f", inf, "/m", "Model 32"}).code, 0);
    EXPECT_EQ(DriverText(model, TEXT("Driver")), "Model_32");
    Write("a.inf", inf_ + "[Model_32]\nDriverFile=NEW.DLL\n");
    EXPECT_EQ(Run({"/if", "/u", "/f", inf, "/m", "Model 32", "/r", "USB001", "/b", "One"}).code, 0);
    EXPECT_EQ(DriverText(model, TEXT("Driver")), "Model_32");
    EXPECT_EQ(Run({"/if", "/f", inf, "/m", "Model 32", "/r", "LPT1:"}).code, 0);
    EXPECT_EQ(DriverText(model, TEXT("Driver")), "NEW.DLL");
    EXPECT_EQ(PrinterText(TEXT("One"), TEXT("Port")), "USB001");
    EXPECT_EQ(PrinterText(model, TEXT("Port")), "LPT1:");
}

TEST_F(Installing, Refusals_say_what_happened_and_change_nothing) {
    const std::string inf = Write("a.inf", inf_);
    const std::string folder = std::getenv("KESTREL_TEST_FOLDER");
    const std::string other = Write("fax.inf", "[Version]\nSignature=$Chicago$\nClass=Fax\n");
    const std::tuple<Words, int, const char*> rows[] = {
        {{"/ia", "/f", folder + "/none.inf", "/m", "Model 32"}, 1, "no such file"},
        {{"/ia", "/f", folder, "/m", "Model 32"}, 1, "folder"},
        {{"/ia", "/f", Write("p.inf", std::string("MZ\0\1", 4)), "/m", "Model 32"}, 1, "not a text"},
        {{"/ia", "/f", Write("s.inf", "[S]\na=b\n"), "/m", "Model 32"}, 1, "no set-up information file"},
        {{"/ia", "/f", other, "/m", "Model 32"}, 1, "not about printers"},
        {{"/ia", "/f", inf, "/m", "Model 33"}, 1, "\"Model 32\""},
        {{"/if", "/f", inf, "/m", "Model 32", "/r", "IP_10.0.0.1", "/b", "New"}, 1, "no port"},
        {{"/y", "/n", "Nobody"}, 1, "no printer"},
        {{"/q", "/y", "/n", "Nobody"}, 1, ""},
        {{"/ia", "/f", inf}, 2, "/m"},
        {{"/ia", "/xyz"}, 2, "/xyz"},
        {{"/ia", "/if"}, 2, "more than one"},
        {{"/f", inf}, 2, "none of"},
    };
    for (const auto& [words, code, text] : rows) {
        SCOPED_TRACE(testing::PrintToString(words));
        const ProgramResult result = Run(words);
        EXPECT_EQ(result.code, code);
        EXPECT_THAT(result.output, HasSubstr(text));
        EXPECT_EQ(result.output.empty(), *text == '\0') << result.output;
    }
    EXPECT_EQ(Run({}, "shell32.dll,Control_RunDLL").code, 2);
    EXPECT_EQ(DriverText(TEXT("Model 32"), TEXT("Driver")), "");
    EXPECT_EQ(PrinterText(TEXT("New"), TEXT("Port")), "");
}

}  // namespace
