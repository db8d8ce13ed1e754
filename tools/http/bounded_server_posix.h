// The HTTP library, whose header takes seconds to compile, held within bounds of ours: one request a
// connection, each with its time and its bytes, and so many connections at a time.
#pragma once

#include <httplib.h>

#include <string>
#include <thread>

#include "http/address.h"

namespace http {

class BoundedServer final : public httplib::Server {
  public:
    BoundedServer();
    BoundedServer(const BoundedServer&) = delete;
    BoundedServer& operator=(const BoundedServer&) = delete;
    ~BoundedServer() override { End(); }

    /// Takes the address; port 0 becomes the one that was found. Throws a UserError that names `option` when
    /// it cannot be had.
    void Bind(Address& address, std::string_view option);
    /// Serves on threads of its own; what is to be served has been said before.
    void Begin();
    /// Ends what is under way, and returns when all of its threads have ended.
    void End();

  private:
    bool process_and_close_socket(socket_t socket) override;

    std::thread thread_;
};

/// A field that has to be there at most once; a second one makes it empty.
[[nodiscard]] std::string FieldOf(const httplib::Request& request, const char* name);

}  // namespace http
