// One page, for whoever may have it.
#include "exporter/exporter.h"

#include <fmt/core.h>

#include <exception>
#include <memory>
#include <optional>
#include <string_view>

#include "http/bounded_server_posix.h"
#include "http/visitor.h"

namespace exporter {
namespace {

constexpr const char* kPath = "/metrics";
constexpr const char* kText = "text/plain; charset=utf-8";
constexpr const char* kPrometheus = "text/plain; version=0.0.4; charset=utf-8";
constexpr std::string_view kOpenMetricsName = "application/openmetrics-text";
constexpr const char* kOpenMetrics = "application/openmetrics-text; version=1.0.0; charset=utf-8";

struct Refusal {
    int status;
    std::string text;
};

class HttpExporter final : public Exporter {
  public:
    explicit HttpExporter(const Setup& setup)
        : page_(setup.page), token_(setup.token), address_(setup.address) {
        server_.set_default_headers({{"Cache-Control", "no-store"}, {"X-Content-Type-Options", "nosniff"}});
        server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
            Answer(request, response);
            return httplib::Server::HandlerResponse::Handled;
        });
        server_.Bind(address_, "--listen");
        server_.Begin();
    }

    [[nodiscard]] std::string Url() const override {
        return fmt::format("http://{}{}", address_.Text(), kPath);
    }

  private:
    /// A browser sends its user's requests wherever a page wants it to, but never a token.
    [[nodiscard]] std::optional<Refusal> Judge(const httplib::Request& request) const {
        const std::string host = http::FieldOf(request, "Host");
        if (token_.empty() && !http::IsOwnHost(host, address_.port))
            return Refusal{403, "the request is for another host; ask by the address of this one"};
        if (!token_.empty() && !http::BearsToken(http::FieldOf(request, "Authorization"), token_))
            return Refusal{401, "this exporter asks for its token; send Authorization: Bearer and the token"};
        const std::string site = request.get_header_value("Sec-Fetch-Site");
        const bool crossed = !site.empty() && site != "same-origin" && site != "none";
        if (crossed || http::IsForeign(request.get_header_value("Origin"), host))
            return Refusal{403, "the request comes from another page"};
        if (request.method != "GET" && request.method != "HEAD")
            return Refusal{405, "nothing is changed here; ask with GET"};
        if (request.path != kPath && request.path != "/")
            return Refusal{404, fmt::format("there is {} alone", kPath)};
        return {};
    }

    void Answer(const httplib::Request& request, httplib::Response& response) const {
        if (const auto refusal = Judge(request)) {
            response.status = refusal->status;
            if (refusal->status == 401) response.set_header("WWW-Authenticate", "Bearer");
            response.set_content(refusal->text + '\n', kText);
            return;
        }
        response.status = 200;
        if (request.path == "/") return response.set_content(fmt::format("{}\n", Url()), kText);
        const bool isOpen = request.get_header_value("Accept").find(kOpenMetricsName) != std::string::npos;
        response.set_content(page_(isOpen ? Format::OpenMetrics : Format::Prometheus),
                             isOpen ? kOpenMetrics : kPrometheus);
    }

    std::function<std::string(Format)> page_;
    std::string token_;
    http::Address address_;
    http::BoundedServer server_;  // last: its threads use the others
};

}  // namespace
}  // namespace exporter

// No exception leaves the module.
extern "C" __attribute__((visibility("default"))) exporter::Exporter* KestrelBeginExporter(
    const exporter::Setup& setup, std::string& problem) {
    try {
        return std::make_unique<exporter::HttpExporter>(setup).release();
    } catch (const std::exception& error) {
        problem = error.what();
        return nullptr;
    }
}
