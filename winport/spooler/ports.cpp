#include "winport/spooler/ports.h"

#include <tcpxcv.h>
#include <windows.h>
#include <winspool.h>

#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "winport/spooler/arguments.h"
#include "winport/spooler/packed_records.h"
#include "winport/spooler/printer_handles.h"
#include "winport/spooler/spool_session.h"

namespace winport {

namespace {

using Purpose = RegistrySession::Purpose;

constexpr std::u16string_view kPortsPath = u"Monitors\\Standard TCP/IP Port\\Ports";
constexpr std::u16string_view kLocalPorts[] = {u"FILE:", u"LPT1:", u"LPT2:", u"LPT3:"};
constexpr DWORD kPortDataVersion = 1;

static_assert(sizeof(PORT_DATA_1) == 964);

// Nothing when the text does not end within its field.
template <std::size_t kCapacity>
std::optional<std::u16string> TextOf(const WCHAR (&field)[kCapacity]) {
    const std::u16string_view whole(field, kCapacity);
    const std::size_t end = whole.find(u'\0');
    if (end == std::u16string_view::npos) return std::nullopt;
    return std::u16string(whole.substr(0, end));
}

DWORD RecordPort(const std::u16string& name, const std::u16string& host, const PORT_DATA_1& data) {
    SpoolSession session(Purpose::Write);
    if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return failure;
    const std::u16string path = std::u16string(kPortsPath) + u'\\' + name;
    if (session.FindKey(path) != 0) return ERROR_ALREADY_EXISTS;
    const KeyId port = session.CreateKey(path);
    WriteText(session.Registry(), port, u"HostName", host);
    WriteNumber(session.Registry(), port, u"PortNumber", data.dwPortNumber);
    WriteNumber(session.Registry(), port, u"Protocol", data.dwProtocol);
    WriteNumber(session.Registry(), port, u"Version", data.dwVersion);
    return session.Commit();
}

// The description is copied, since the caller's bytes may lie anywhere.
DWORD AddPort(const BYTE* input, DWORD inputSize) {
    if (input == nullptr || inputSize != sizeof(PORT_DATA_1)) return ERROR_INVALID_DATA;
    PORT_DATA_1 data;
    std::memcpy(&data, input, sizeof data);
    if (data.dwVersion != kPortDataVersion) return ERROR_INVALID_LEVEL;
    if (data.cbSize != sizeof data) return ERROR_INVALID_DATA;
    if (data.dwProtocol != PROTOCOL_RAWTCP_TYPE && data.dwProtocol != PROTOCOL_LPR_TYPE)
        return ERROR_INVALID_PARAMETER;
    const auto name = TextOf(data.sztPortName);
    const auto host = TextOf(data.sztHostAddress);
    if (!name || !host) return ERROR_INVALID_DATA;
    if (!IsKeyName(*name) || host->empty()) return ERROR_INVALID_PARAMETER;
    return RecordPort(*name, *host, data);
}

DWORD AnswerRequest(const OpenPrinter& monitor, std::u16string_view request, const BYTE* input,
                    DWORD inputSize) {
    if (request != u"AddPort") return ERROR_INVALID_PARAMETER;
    if ((monitor.access & SERVER_ACCESS_ADMINISTER) == 0) return ERROR_ACCESS_DENIED;
    return AddPort(input, inputSize);
}

}  // namespace

}  // namespace winport

using namespace winport;

BOOL EnumPortsW(LPWSTR server, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed, LPDWORD returned) {
    if (needed == nullptr || returned == nullptr) return Report(ERROR_INVALID_PARAMETER);
    *needed = 0;
    *returned = 0;
    if (!IsEmpty(server)) return Report(ERROR_INVALID_NAME);
    if (level != 1) return Report(ERROR_INVALID_LEVEL);
    std::vector<std::u16string> names(std::begin(kLocalPorts), std::end(kLocalPorts));
    {
        SpoolSession session(Purpose::Read);
        for (std::u16string& name : session.Registry().ChildNames(session.FindKey(kPortsPath)))
            names.push_back(std::move(name));
        if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return Report(failure);
    }
    return Report(PackNames<PORT_INFO_1W>(names, buffer, size, *needed, *returned));
}

// The call itself succeeds once the monitor has been asked; what the monitor says is the status.
BOOL XcvDataW(HANDLE monitor, LPCWSTR request, LPBYTE input, DWORD inputSize, LPBYTE, DWORD,
              LPDWORD outputNeeded, LPDWORD status) {
    if (request == nullptr || outputNeeded == nullptr || status == nullptr)
        return Report(ERROR_INVALID_PARAMETER);
    *outputNeeded = 0;
    const auto opened = FindPrinterHandle(monitor);
    if (!opened || !opened->isPortMonitor) return Report(ERROR_INVALID_HANDLE);
    if (const DWORD failure = SpoolSession(Purpose::Read).Error(); failure != ERROR_SUCCESS)
        return Report(failure);
    *status = AnswerRequest(*opened, request, input, inputSize);
    return Report(ERROR_SUCCESS);
}
