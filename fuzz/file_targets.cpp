// Files that somebody else wrote.
#include <windows.h>

#include <fstream>
#include <memory>
#include <string>

#include "host/product_config.h"
#include "host/profile_reader.h"
#include "occupied_file.h"
#include "rundll32/inf_file.h"
#include "rundll32/refusal.h"
#include "shared/exchange_log.h"
#include "shared/user_error.h"
#include "targets.h"
#include "vprinter/faults/fault_script.h"
#include "vprinter/faults/faulty_reply.h"
#include "vprinter/files/dump_file.h"
#include "vprinter/replay/replay.h"
#include "vprinter/requests/responder.h"
#include "widened.h"

namespace fuzz {

namespace {

const std::string& Home() {
    static const std::string home = std::getenv("WINPORT_HOME");
    return home;
}

std::string FileWith(std::string_view bytes) {
    const std::string path = Home() + "/input.txt";
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
    return path;
}

void InitialisationFile(std::string_view bytes) {
    const WideText path = Widened(FileWith(bytes));
    const host::ProfileReader reader(path);
    for (const WCHAR* section : {TEXT("Printers"), TEXT("SDK"), TEXT("a")}) {
        for (const WideText& line : reader.Lines(section)) {
            const WideText key = line.substr(0, line.find(TEXT('=')));
            Require(line.find(WCHAR{0}) == WideText::npos, "a line is one line");
            Require(reader.Text(section, key.c_str()).size() < MAX_PATH, "cut to its room");
            static_cast<void>(reader.Integer(section, key.c_str(), 7));
            static_cast<void>(host::ParseInteger(line));
        }
    }
    for (const DWORD capacity : {2u, 3u, 5u, 40u}) {
        const std::unique_ptr<WCHAR[]> buffer(new WCHAR[capacity]);
        const DWORD length = GetPrivateProfileSectionW(TEXT("a"), buffer.get(), capacity, path.c_str());
        Require(length < capacity && buffer[length] == 0, "terminated within its room");
        const DWORD value = GetPrivateProfileStringW(TEXT("a"), TEXT("b"), TEXT("fallback "), buffer.get(),
                                                     capacity, path.c_str());
        Require(value < capacity && buffer[value] == 0, "terminated within its room");
    }
}

void ProductConfiguration(std::string_view bytes) {
    const WideText path = Widened(FileWith(bytes));
    host::CProductConfig config;
    const bool loaded = config.Load(path);
    Require(config.IsLoaded(), "the first load decides");
    Require(config.Load(TEXT("/nowhere/else.ini")) || !loaded, "and no later one");
    Require(!loaded || !config.GetSignature().empty(), "a required value is there");
    host::MaintenanceSettings settings;
    Require(config.GetMaintenanceSettings(TEXT("ZR One"), settings), "there always are settings");
    for (const int32_t value : settings.values)
        Require(value >= 1 && value <= 10000, "within its range");
    WideText model;
    static_cast<void>(config.GetModelNameForURL(TEXT("ZR One"), model));
    static_cast<void>(config.GetDisplayIcon(TEXT("ZR One")));
}

void SetupInformation(std::string_view bytes) {
    try {
        const auto file = printui::InfFile::Read(FileWith(bytes));
        Require(file.Value(TEXT("Version"), TEXT("Signature")).starts_with('$'), "signed");
        if (const auto* lines = file.Find(TEXT("Manufacturer")))
            for (const printui::InfLine& line : *lines)
                Require(!line.values.empty(), "a line has a value");
    } catch (const printui::Refusal& refusal) {
        Require(!refusal.text.empty(), "a refusal says why");
    }
}

// Reads a file of this name, and may refuse what is in it.
template <typename Body>
void Read(const std::string& file, Body body) {
    try {
        body();
    } catch (const tools::UserError& error) {
        Require(std::string_view(error.what()).starts_with(file + ':'), "an error says where");
    }
}

void FaultScripts(std::string_view bytes) {
    Read("faults.json", [&] {
        const auto rules = vprinter::ParseFaults(bytes, "faults.json");
        static_cast<void>(vprinter::PrintersNamed(rules));
        vprinter::FaultScript script(vprinter::FaultsFor("USB001", rules), 0);
        std::string scratch;
        for (const std::string_view request : {"DeviceSettings.Fax.Redials?", "ZRPing?", ""})
            for (uint64_t second = 0; second < 3; ++second)
                if (const auto fault = script.Next(request, second * 1000))
                    for (const std::string_view reply : {"0000,Key=value;", "0,A#9=;&B=2;", ""})
                        static_cast<void>(vprinter::FaultyReply(*fault, reply, "", scratch));
    });
}

void Dumps(std::string_view bytes) {
    Read("dump.json", [&] {
        vprinter::DeviceModel model;
        const vprinter::Origin origin = vprinter::DumpFile::Parse(bytes, "dump.json").Adopt(model);
        vprinter::Responder responder(model);
        responder.Adopt(origin);
        for (const std::string_view request :
             {"DeviceSettings.Fax.Redials?", "DeviceNetwork.WiFiAccessPoints.GetAccessPoints?",
              "ZRGetStatus?"})
            static_cast<void>(responder.Answer(request, 1));
    });
}

void ExchangeLogs(std::string_view bytes) {
    Read("log.jsonl", [&] {
        const auto log = tools::ParseExchangeLog(bytes, "log.jsonl");
        vprinter::Replay replay(log, "log.jsonl", "USB001", vprinter::Pace::Real, true);
        for (const tools::LoggedExchange& exchange : log.exchanges)
            static_cast<void>(replay.Next(exchange.request));
    });
}

void UseAs(winport::ObjectKind kind) {
    constexpr const WCHAR* kName = TEXT("Global\\FuzzObject");
    HANDLE object = nullptr;
    if (kind == winport::ObjectKind::Event) {
        object = CreateEventW(nullptr, FALSE, FALSE, kName);
        if (object == nullptr) return;
        WaitForSingleObject(object, 0);
        SetEvent(object);
        Require(WaitForSingleObject(object, 0) == WAIT_OBJECT_0, "a set event is signalled");
    } else if (kind == winport::ObjectKind::Mutex) {
        object = CreateMutexW(nullptr, FALSE, kName);
        if (object == nullptr) return;
        const DWORD taken = WaitForSingleObject(object, 0);
        Require((taken == WAIT_OBJECT_0 || taken == WAIT_ABANDONED) == (ReleaseMutex(object) != FALSE),
                "who has taken it can give it back");
    } else {
        object = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, kName);
        if (object == nullptr) return;
        auto* const view = static_cast<volatile uint8_t*>(MapViewOfFile(object, FILE_MAP_READ, 0, 0, 0));
        MEMORY_BASIC_INFORMATION info = {};
        if (view != nullptr && VirtualQuery(const_cast<uint8_t*>(view), &info, sizeof(info)) != 0)
            static_cast<void>(view[info.RegionSize - 1]);
        if (view != nullptr) UnmapViewOfFile(const_cast<uint8_t*>(view));
    }
    CloseHandle(object);
}

// The first byte chooses what the file is asked for as; the second adds pages. The rest is written over a
// page that would be accepted.
void ObjectFiles(std::string_view bytes) {
    if (bytes.size() < 2) return;
    static const std::string folder = [] {
        CreateEventW(nullptr, FALSE, FALSE, TEXT("Global\\FuzzFolder"));  // stays, and the folder with it
        return Home() + "/kernel";
    }();
    const auto kind = static_cast<winport::ObjectKind>(1 + static_cast<unsigned char>(bytes[0]) % 3);
    const size_t size = winport::kPageSize * (1 + static_cast<unsigned char>(bytes[1]) % 3);
    std::string file = PageOf("FuzzObject", kind, size - winport::kPageSize, size);
    const std::string_view over = bytes.substr(2, file.size());
    // Zero bytes keep what is there, so that a few bytes can change a field far behind.
    for (size_t i = 0; i < over.size(); ++i)
        if (over[i] != 0) file[i] = over[i];
    const OccupiedFile occupied(folder, "FuzzObject", file);
    UseAs(kind);
}

constexpr Target kFileTargets[] = {
    {"initialisation_file", InitialisationFile},
    {"product_configuration", ProductConfiguration},
    {"inf", SetupInformation},
    {"fault_script", FaultScripts},
    {"dump_file", Dumps},
    {"exchange_log", ExchangeLogs},
    {"object_file", ObjectFiles},
};

}  // namespace

std::span<const Target> FileTargets() {
    return kFileTargets;
}

}  // namespace fuzz
