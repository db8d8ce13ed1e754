// The routes as rows.
#include "vprinter/api/api.h"

#include <algorithm>
#include <exception>
#include <optional>

#include "vprinter/api/refusal.h"
#include "vprinter/api/views.h"
#include "vprinter/faults/fault_kinds.h"

namespace vprinter::api {
namespace {

using Handler = tools::Json (*)(const PrinterParts& printer, const Call& call);

/// Below /api/printers/{port}; each "*" of the path is an argument.
struct Route {
    std::string_view method;
    std::string_view path;
    Handler handler;
    bool hasBody = false;
};

constexpr Route kRoutes[] = {
    {"GET", "", Status},
    {"GET", "/settings", Settings},
    {"PUT", "/settings/*", ChangeSetting, true},
    {"GET", "/addressbook", AddressBook},
    {"PUT", "/addressbook/*/*", ChangeRecord, true},
    {"GET", "/access-points", AccessPoints},
    {"POST", "/access-points/search", SearchAccessPoints},
    {"GET", "/faults", Faults},
    {"POST", "/faults", AddFault, true},
    {"DELETE", "/faults/*", RemoveFault},
};

constexpr std::string_view kPrinters = "/api/printers";
constexpr std::string_view kFaultKinds = "/api/fault-kinds";
constexpr size_t kMaxSegments = 8;

std::optional<uint8_t> HexDigit(char c) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const size_t value = kDigits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
    if (value == std::string_view::npos) return {};
    return static_cast<uint8_t>(value);
}

std::string WithoutPercents(std::string_view segment) {
    std::string text;
    for (size_t i = 0; i < segment.size(); ++i) {
        if (segment[i] != '%') {
            text += segment[i];
            continue;
        }
        const auto high = i + 2 < segment.size() ? HexDigit(segment[i + 1]) : std::nullopt;
        const auto low = i + 2 < segment.size() ? HexDigit(segment[i + 2]) : std::nullopt;
        if (!high || !low) throw Refusal(400, "the path has a % without two digits", "write % itself as %25");
        text += static_cast<char>(*high << 4 | *low);
        i += 2;
    }
    return text;
}

/// The parts between the slashes of a path that begins with one.
std::vector<std::string_view> Segments(std::string_view path) {
    std::vector<std::string_view> segments;
    while (!path.empty() && segments.size() < kMaxSegments) {
        const size_t end = path.find('/', 1);
        segments.push_back(path.substr(1, end - 1));
        path.remove_prefix(std::min(end, path.size()));
    }
    return segments;
}

bool Matches(const Route& route, const std::vector<std::string_view>& segments, Call& call) {
    const std::vector<std::string_view> pattern = Segments(route.path);
    if (pattern.size() != segments.size()) return false;
    call.arguments.clear();
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == "*")
            call.arguments.push_back(WithoutPercents(segments[i]));
        else if (pattern[i] != segments[i])
            return false;
    }
    return true;
}

const Route& FindRoute(std::string_view method, const std::vector<std::string_view>& segments, Call& call) {
    bool known = false;
    for (const Route& route : kRoutes) {
        if (!Matches(route, segments, call)) continue;
        if (route.method == method) return route;
        known = true;
    }
    if (known) throw Refusal(405, "this cannot be done with it", "vprinter-api.json tells what can");
    throw Refusal(404, "there is nothing of this name", "vprinter-api.json tells what there is");
}

}  // namespace

Answer Api::Refused(int status, std::string_view what, std::string_view advice) {
    return {status, {{"error", {{"text", what}, {"advice", advice}}}}};
}

Answer Api::Ask(std::string_view method, std::string_view target, std::string_view body) const {
    try {
        return Carried(method, target, body);
    } catch (const Refusal& refusal) {
        return Refused(refusal.status, refusal.what(), refusal.advice);
    } catch (const tools::JsonError& problem) {
        return Refused(400, problem.what(), "vprinter-api.json tells what is expected");
    } catch (const std::exception& fault) {
        return Refused(500, fault.what(), "this is a fault of the program");
    }
}

Answer Api::Carried(std::string_view method, std::string_view target, std::string_view body) const {
    const std::string_view path = target.substr(0, target.find('?'));
    if (path == kFaultKinds && method == "GET") return {200, FaultFieldsJson()};
    if (!path.starts_with(kPrinters))
        throw Refusal(404, "there is nothing of this name", "see /api/printers");
    const std::string_view rest = path.substr(kPrinters.size());
    if (rest.empty() && method == "GET") return {200, ListPrinters()};

    std::vector<std::string_view> segments = Segments(rest);
    const std::string port = segments.empty() ? std::string() : WithoutPercents(segments.front());
    const auto place = std::ranges::find(printers_.ports, port);
    if (place == printers_.ports.end() || rest.front() != '/')
        throw Refusal(404, "there is no printer on this port", "GET /api/printers lists them");
    segments.erase(segments.begin());

    Call call;
    const Route& route = FindRoute(method, segments, call);
    if (route.hasBody) call.body = tools::Json::Parse(body);
    Answer answer;
    // Thrown here, not on the printer's thread, which has nothing to do with it.
    std::exception_ptr problem;
    Run(static_cast<size_t>(place - printers_.ports.begin()), [&](const PrinterParts& printer) {
        try {
            answer.body = route.handler(printer, call);
        } catch (...) {
            problem = std::current_exception();
        }
    });
    if (problem) std::rethrow_exception(problem);
    return answer;
}

tools::Json Api::ListPrinters() const {
    tools::Json list = tools::Json::EmptyArray();
    for (size_t i = 0; i < printers_.ports.size(); ++i)
        Run(i, [&](const PrinterParts& printer) { list.Append(StatusView(printer)); });
    return {{"printers", list}};
}

void Api::Run(size_t printer, const PrinterWork& work) const {
    if (printers_.run(printer, work)) return;
    throw Refusal(503, "the printer is busy or has ended", "try again");
}

}  // namespace vprinter::api
