// What the library asks for is answered from a Connection; whoever is one too many is told so at once.
#include "http/bounded_server_posix.h"

#include <fmt/core.h>
#include <unistd.h>

#include <atomic>

#include "http/connection_posix.h"
#include "shared/user_error.h"

namespace http {
namespace {

constexpr size_t kMostConnections = 24;
constexpr size_t kLargestBody = size_t{64} * 1024;

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

}  // namespace

BoundedServer::BoundedServer() {
    new_task_queue = [] { return new BoundedThreads; };
    set_payload_max_length(kLargestBody);
    // The library's own options let a second process share the port.
    set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    });
}

void BoundedServer::Bind(Address& address, std::string_view option) {
    bool bound = false;
    if (address.port != 0) {
        bound = bind_to_port(address.host, address.port);
    } else if (const int port = bind_to_any_port(address.host); port > 0) {
        address.port = static_cast<uint16_t>(port);
        bound = true;
    }
    if (bound) return;
    throw tools::UserError(
        fmt::format("{} {}: the address is in use or not one of this computer; choose another, or port 0",
                    option, address.Text()));
}

void BoundedServer::Begin() {
    thread_ = std::thread([this] { listen_after_bind(); });
    // Until then it cannot be stopped.
    while (!is_running())
        std::this_thread::yield();
}

void BoundedServer::End() {
    if (!thread_.joinable()) return;
    stop();
    thread_.join();
}

bool BoundedServer::process_and_close_socket(socket_t socket) {
    Connection connection(socket);
    if (BoundedThreads::isOneTooMany) {
        constexpr std::string_view kBusy = "HTTP/1.1 503 Service Unavailable\r\nContent-Length: 0\r\n\r\n";
        static_cast<void>(connection.Write(kBusy.data(), kBusy.size()));
    } else {
        BoundedStream stream(connection);
        bool closed = false;
        static_cast<void>(process_request(stream, true, closed, nullptr));
        connection.Finish();
    }
    return close(socket) == 0;
}

std::string FieldOf(const httplib::Request& request, const char* name) {
    return request.get_header_value_count(name) == 1 ? request.get_header_value(name) : std::string();
}

}  // namespace http
