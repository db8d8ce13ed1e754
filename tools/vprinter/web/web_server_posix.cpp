// The HTTP library, whose header takes seconds to compile, held within bounds of ours: one request a
// connection, each with its time and its bytes, and so many connections at a time.
#include "vprinter/web/web_server.h"

#include <fmt/core.h>
#include <httplib.h>
#include <unistd.h>

#include <atomic>
#include <random>
#include <thread>

#include "shared/user_error.h"
#include "vprinter/api/gate.h"
#include "vprinter/web/connection_posix.h"
#include "vprinter/web/panel_files.h"

namespace vprinter::web {
namespace {

constexpr size_t kMostConnections = 24;
constexpr size_t kLargestBody = size_t{64} * 1024;
constexpr std::chrono::milliseconds kBetweenEvents{100};
constexpr std::chrono::milliseconds kLongestSilence{1000};
constexpr std::chrono::milliseconds kPauseAfterWrongToken{300};
constexpr const char* kJson = "application/json";
constexpr const char* kApiPaths = "/api/.*";

/// The connection as the library wants it.
class BoundedStream final : public httplib::Stream {
  public:
    explicit BoundedStream(Connection& connection) : connection_(connection) {}

    [[nodiscard]] bool is_readable() const override { return true; }
    [[nodiscard]] bool is_writable() const override { return connection_.TakesMore(); }
    ssize_t read(char* to, size_t size) override { return connection_.Read(to, size); }
    ssize_t write(const char* from, size_t size) override { return connection_.Write(from, size); }
    void get_remote_ip_and_port(std::string&, int&) const override {}
    void get_local_ip_and_port(std::string&, int&) const override {}
    [[nodiscard]] socket_t socket() const override { return connection_.Socket(); }

  private:
    Connection& connection_;
};

/// Threads for so many connections; one more is told so and closed at once.
class BoundedThreads final : public httplib::TaskQueue {
  public:
    BoundedThreads() : threads_(kMostConnections) {}

    void enqueue(std::function<void()> serve) override {
        if (served_.fetch_add(1) >= kMostConnections) {
            --served_;
            isOneTooMany = true;
            serve();
            isOneTooMany = false;
            return;
        }
        threads_.enqueue([this, serve = std::move(serve)] {
            serve();
            --served_;
        });
    }
    void shutdown() override { threads_.shutdown(); }

    /// On the thread that accepts: the connection that it serves now is one too many.
    static thread_local bool isOneTooMany;

  private:
    std::atomic<size_t> served_ = 0;
    httplib::ThreadPool threads_;
};
thread_local bool BoundedThreads::isOneTooMany = false;

class BoundedServer final : public httplib::Server {
  private:
    bool process_and_close_socket(socket_t socket) override {
        Connection connection(socket);
        if (BoundedThreads::isOneTooMany) {
            constexpr std::string_view kBusy =
                "HTTP/1.1 503 Service Unavailable\r\nContent-Length: 0\r\n\r\n";
            static_cast<void>(connection.Write(kBusy.data(), kBusy.size()));
        } else {
            BoundedStream stream(connection);
            bool closed = false;
            static_cast<void>(process_request(stream, true, closed, nullptr));
            connection.Finish();
        }
        return close(socket) == 0;
    }
};

/// A field that has to be there at most once; a second one makes it empty.
std::string FieldOf(const httplib::Request& request, const char* name) {
    return request.get_header_value_count(name) == 1 ? request.get_header_value(name) : std::string();
}

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
    Implementation(Address address, const std::string& token, const api::Api& api, api::Traffic& traffic)
        : api_(api), traffic_(traffic), address_(std::move(address)) {
        SetUp();
        Bind();
        gate_.emplace(address_.port, token, RandomText());
        thread_ = std::thread([this] { server_.listen_after_bind(); });
        // Until then it cannot be stopped.
        while (!server_.is_running())
            std::this_thread::yield();
    }

    ~Implementation() {
        traffic_.End();
        server_.stop();
        thread_.join();
    }

    [[nodiscard]] std::string Url() const { return fmt::format("http://{}/", address_.Text()); }

  private:
    using Handled = httplib::Server::HandlerResponse;

    void SetUp() {
        server_.new_task_queue = [] { return new BoundedThreads; };
        server_.set_payload_max_length(kLargestBody);
        server_.set_default_headers(Headers());
        // The library's own options let a second process share the port.
        server_.set_socket_options([](socket_t socket) {
            const int yes = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
        });
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

    void Bind() {
        bool bound = false;
        if (address_.port != 0) {
            bound = server_.bind_to_port(address_.host, address_.port);
        } else if (const int port = server_.bind_to_any_port(address_.host); port > 0) {
            address_.port = static_cast<uint16_t>(port);
            bound = true;
        }
        if (!bound)
            throw tools::UserError(fmt::format(
                "--web {}: the address is in use or not one of this computer; choose another, or port 0",
                address_.Text()));
    }

    /// Before the body is read.
    Handled Receive(const httplib::Request& request, httplib::Response& response) const {
        const std::string host = FieldOf(request, "Host"), origin = request.get_header_value("Origin"),
                          site = request.get_header_value("Sec-Fetch-Site"),
                          type = FieldOf(request, "Content-Type"),
                          length = FieldOf(request, "Content-Length"),
                          packed = request.get_header_value("Content-Encoding"),
                          pieces = request.get_header_value("Transfer-Encoding"),
                          authorization = FieldOf(request, "Authorization"),
                          cookie = FieldOf(request, "Cookie");
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
    Address address_;
    std::optional<api::Gate> gate_;
    BoundedServer server_;
    std::thread thread_;
};

bool IsThere() {
    return true;
}

WebServer::WebServer(const Address& address, const std::string& token, const api::Api& api,
                     api::Traffic& traffic)
    : implementation_(std::make_unique<Implementation>(address, token, api, traffic)) {}

WebServer::~WebServer() = default;

std::string WebServer::Url() const {
    return implementation_->Url();
}

}  // namespace vprinter::web
