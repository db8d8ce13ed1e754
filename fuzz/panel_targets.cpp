// What a browser or a stranger sends to the panel: the head that the gate judges, the path and the body.
#include <array>
#include <string>

#include "targets.h"
#include "vprinter/api/api.h"
#include "vprinter/api/gate.h"
#include "vprinter/api/traffic.h"

namespace fuzz {

namespace {

using namespace vprinter;

/// The next line, which is then no longer there.
std::string_view TakeLine(std::string_view& bytes) {
    const size_t end = bytes.find('\n');
    const std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    return line;
}

// Method, target and body, to a printer that is begun anew now and then.
void PanelRequest(std::string_view bytes) {
    struct Printer {
        std::string port = "USB001";
        DeviceModel model;
        Responder responder{model};
        FaultScript faults;
    };
    static Printer printer;
    static const api::Api api({{printer.port}, [](size_t, const PrinterWork& work) {
                                   work({printer.port, printer.model, printer.responder, printer.faults, 0});
                                   return true;
                               }});
    const std::string method(TakeLine(bytes));
    const std::string target(TakeLine(bytes));
    const std::string body(bytes);
    const api::Answer answer = api.Ask(method, target, body);
    Require(answer.status != 500, "no fault of the program");
    Require((answer.status == 200) == (answer.body.Find("error") == nullptr), "a refusal says why");
    Require(api.Ask("GET", "/api/printers/USB001/settings", {}).status == 200, "the printer is still there");
}

// One field of the head a line.
void PanelHead(std::string_view bytes) {
    static const api::Gate open(8631, "", "session");
    static const api::Gate closed(8631, "0123456789abcdef", "session");
    std::array<std::string_view, 11> line;
    for (std::string_view& field : line)
        field = TakeLine(bytes);
    const api::RequestHead head{line[0], line[1], line[2], line[3], line[4], line[5],
                                line[6], line[7], line[8], line[9], line[10]};
    const auto refusal = closed.Judge(head);
    Require(refusal.has_value() || !open.Judge(head), "a token opens nothing more");
    const bool plain = head.host == "127.0.0.1:8631" || head.host == "localhost:8631";
    Require(plain || head.host.find_first_not_of("0123456789.:") == std::string_view::npos ||
                head.host.starts_with('[') || refusal.has_value(),
            "no foreign name comes in");
    static_cast<void>(closed.CookieFor(api::TokenOf(bytes)));
}

void PanelTraffic(std::string_view bytes) {
    api::KeptExchange kept;
    kept.request = std::string(TakeLine(bytes));
    kept.reply = std::string(bytes);
    Require(!api::ExchangeView(kept).Dump().empty(), "whatever passes can be shown");
}

constexpr Target kPanelTargets[] = {
    {"panel_request", PanelRequest}, {"panel_head", PanelHead}, {"panel_traffic", PanelTraffic}};

}  // namespace

std::span<const Target> PanelTargets() {
    return kPanelTargets;
}

}  // namespace fuzz
