// ZeroMQ, request and reply sockets over "ipc://".
#include <zmq.h>

#include <stdexcept>
#include <string>

#include "peers/peers.h"

namespace {

class Socket {
  public:
    explicit Socket(int type) : socket_(zmq_socket(context_, type)) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() {
        zmq_close(socket_);
        zmq_ctx_term(context_);
    }
    [[nodiscard]] void* Get() const { return socket_; }

  private:
    void* context_ = zmq_ctx_new();
    void* socket_;
};

std::string Endpoint(const Place& place) {
    return "ipc://" + place.File("zeromq");
}

void Serve(const Place& place) {
    const Socket socket(ZMQ_REP);
    if (zmq_bind(socket.Get(), Endpoint(place).c_str()) != 0) throw std::runtime_error("no ZeroMQ socket");
    Ready();
    char request[64];
    while (zmq_recv(socket.Get(), request, sizeof(request), 0) > 0)
        zmq_send(socket.Get(), kPeerReply.data(), kPeerReply.size(), 0);
}

class ZeroMqClient final : public Client {
  public:
    explicit ZeroMqClient(const Place& place) { zmq_connect(socket_.Get(), Endpoint(place).c_str()); }

    void Exchange() override {
        zmq_send(socket_.Get(), kPeerRequest.data(), kPeerRequest.size(), 0);
        length_ = zmq_recv(socket_.Get(), reply_, sizeof(reply_), 0);
    }
    bool IsRight() override {
        return length_ > 0 && std::string_view(reply_, static_cast<size_t>(length_)) == kPeerReply;
    }

  private:
    Socket socket_{ZMQ_REQ};
    char reply_[64];
    int length_ = -1;
};

}  // namespace

const Contender kZeroMq = {"zeromq", "ZeroMQ", "polling", "sleeping", Serve, Connect<ZeroMqClient>,
                           "h4m1",   true};
