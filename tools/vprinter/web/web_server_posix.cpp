// Requests judged by the gate, pages and the interface behind them.
#include "vprinter/web/web_server.h"

#include <fmt/core.h>

#include <random>
#include <thread>

#include "http/bounded_server_posix.h"
#include "vprinter/api/gate.h"
#include "vprinter/web/panel_files.h"

namespace vprinter::web {
namespace {

constexpr std::chrono::milliseconds kBetweenEvents{100};
constexpr std::chrono::milliseconds kLongestSilence{1000};
constexpr std::chrono::milliseconds kPauseAfterWrongToken{300};
constexpr const char* kJson = "application/json";
constexpr const char* kApiPaths = "/api/.*";

void Put(const api::Answer& answer, httplib::Response& response) {
    response.status = answer.status;
    response.set_content(answer.body.Dump() + '\n', kJson);
}

std::string RandomText() {
    std::random_device device;
    std::string text;
    for (int i = 0; i < 8; ++i)
        text += fmt::format("{:08x}", device());
    return text;
}

// Nothing from elsewhere, nothing inline, in no frame; answers are the panel's alone, and nobody keeps them.
httplib::Headers Headers() {
    return {{"Content-Security-Policy",
             "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self'; "
             "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
            {"X-Content-Type-Options", "nosniff"},
            {"Referrer-Policy", "no-referrer"},
            {"Cross-Origin-Resource-Policy", "same-origin"},
            {"Cross-Origin-Opener-Policy", "same-origin"},
            {"Cache-Control", "no-store"}};
}

}  // namespace

class WebServer::Implementation final {
  public:
    Implementation(http::Address address, const std::string& token, const api::Api& api,
                   api::Traffic& traffic)
        : api_(api), traffic_(traffic), address_(std::move(address)) {
        SetUp();
        server_.Bind(address_, "--web");
        gate_.emplace(address_.port, token, RandomText());
        server_.Begin();
    }

    ~Implementation() {
        traffic_.End();
        server_.End();
    }

    [[nodiscard]] std::string Url() const { return fmt::format("http://{}/", address_.Text()); }

  private:
    using Handled = httplib::Server::HandlerResponse;

    void SetUp() {
        server_.set_default_headers(Headers());
        server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
            return Receive(request, response);
        });
        const auto ask = [this](const httplib::Request& request, httplib::Response& response) {
            Ask(request, response);
        };
        server_.Get(kApiPaths, ask);
        server_.Put(kApiPaths, ask);
        server_.Post(kApiPaths, ask);
        server_.Delete(kApiPaths, ask);
        // Of the library's own refusals.
        server_.set_error_handler(
            httplib::Server::Handler([](const httplib::Request&, httplib::Response& response) {
                if (!response.body.empty()) return;
                Put(api::Api::Refused(response.status, "the request is not taken",
                                      "vprinter-api.json tells what is"),
                    response);
            }));
    }

    /// Before the body is read.
    Handled Receive(const httplib::Request& request, httplib::Response& response) const {
        const std::string host = http::FieldOf(request, "Host"), origin = request.get_header_value("Origin"),
                          site = request.get_header_value("Sec-Fetch-Site"),
                          type = http::FieldOf(request, "Content-Type"),
                          length = http::FieldOf(request, "Content-Length"),
                          packed = request.get_header_value("Content-Encoding"),
                          pieces = request.get_header_value("Transfer-Encoding"),
                          authorization = http::FieldOf(request, "Authorization"),
                          cookie = http::FieldOf(request, "Cookie");
        const api::RequestHead head{request.method, request.target, host,   origin,        site,  type,
                                    length,         packed,         pieces, authorization, cookie};
        if (const auto refusal = gate_->Judge(head)) {
            Put(api::Api::Refused(refusal->status, refusal->what(), refusal->advice), response);
            return Handled::Handled;
        }
        if (request.method == "GET" && request.target == "/api/events") {
            StreamEvents(response);
            return Handled::Handled;
        }
        for (const PanelFile& file : PanelFiles()) {
            if (request.method != "GET" || request.path != (file.path == "/index.html" ? "/" : file.path))
                continue;
            response.status = 200;
            response.set_content(file.text.data(), file.text.size(), std::string(file.type));
            return Handled::Handled;
        }
        return Handled::Unhandled;
    }

    void Ask(const httplib::Request& request, httplib::Response& response) const {
        if (request.target == "/api/session" && request.method == "POST")
            return OpenSession(request, response);
        Put(api_.Ask(request.method, request.target, request.body), response);
    }

    void OpenSession(const httplib::Request& request, httplib::Response& response) const {
        const auto cookie = gate_->CookieFor(api::TokenOf(request.body));
        if (!cookie) {
            std::this_thread::sleep_for(kPauseAfterWrongToken);
            return Put(
                api::Api::Refused(401, "this is not the token", "it stands in the file of --web-token"),
                response);
        }
        response.set_header("Set-Cookie", *cookie);
        Put({200, tools::Json::EmptyObject()}, response);
    }

    void StreamEvents(httplib::Response& response) const {
        const auto viewer = api::Traffic::Viewer::Begin(traffic_);
        if (viewer == nullptr)
            return Put(api::Api::Refused(503, "too many look on already", "close another page"), response);
        response.status = 200;
        response.set_chunked_content_provider("text/event-stream", [viewer](size_t, httplib::DataSink& sink) {
            const api::Traffic::Viewer::News news = viewer->Next(kLongestSilence);
            const std::string text = news.IsEmpty() ? ":\n\n" : api::EventText(news);
            if (news.ended || !sink.is_writable() || !sink.write(text.data(), text.size())) return false;
            std::this_thread::sleep_for(kBetweenEvents);
            return true;
        });
    }

    const api::Api& api_;
    api::Traffic& traffic_;
    http::Address address_;
    std::optional<api::Gate> gate_;
    http::BoundedServer server_;
};

bool IsThere() {
    return true;
}

WebServer::WebServer(const http::Address& address, const std::string& token, const api::Api& api,
                     api::Traffic& traffic)
    : implementation_(std::make_unique<Implementation>(address, token, api, traffic)) {}

WebServer::~WebServer() = default;

std::string WebServer::Url() const {
    return implementation_->Url();
}

}  // namespace vprinter::web
