// The panel: its pages and the interface behind them, over HTTP. A build without the library that serves it
// has a panel that cannot be had (KESTREL_WEB).
#pragma once

#include <memory>
#include <string>

#include "http/address.h"
#include "vprinter/api/api.h"
#include "vprinter/api/traffic.h"

namespace vprinter::web {

/// Whether this build has a panel.
[[nodiscard]] bool IsThere();

class WebServer final {
  public:
    /// Listens, and serves on threads of its own. `token`: what visitors must know, empty for none. The two
    /// others outlive it. Throws a UserError when the address cannot be had.
    WebServer(const http::Address& address, const std::string& token, const api::Api& api,
              api::Traffic& traffic);
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;
    /// Ends what is under way, and returns when all of its threads have ended.
    ~WebServer();

    /// What a browser is told: http://127.0.0.1:8631/
    [[nodiscard]] std::string Url() const;

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace vprinter::web
