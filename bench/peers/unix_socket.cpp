// A Unix stream socket; the server has a thread for each connection.
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <stdexcept>
#include <thread>

#include "peers/byte_stream.h"

namespace {

class Address {
  public:
    explicit Address(const Place& place) {
        address_.sun_family = AF_UNIX;
        std::strncpy(address_.sun_path, place.File("socket").c_str(), sizeof(address_.sun_path) - 1);
    }
    [[nodiscard]] const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&address_); }
    [[nodiscard]] socklen_t Size() const { return sizeof(address_); }

  private:
    sockaddr_un address_{};
};

void Serve(const Place& place) {
    const Address address(place);
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    if (bind(listener, address.Get(), address.Size()) != 0 || listen(listener, 8) != 0)
        throw std::runtime_error("no socket");
    Ready();
    for (;;) {
        const int connection = accept(listener, nullptr, nullptr);
        std::thread([connection] { AnswerStream(connection, connection); }).detach();
    }
}

std::unique_ptr<Client> Connect(const Place& place, unsigned) {
    const Address address(place);
    const int file = socket(AF_UNIX, SOCK_STREAM, 0);
    if (connect(file, address.Get(), address.Size()) != 0) throw std::runtime_error("no connection");
    return std::make_unique<StreamClient>(file, file);
}

}  // namespace

const Contender kUnixSocket = {"unix", "Unix stream socket", "polling", "sleeping", Serve, Connect, "h4m1",
                               true};
