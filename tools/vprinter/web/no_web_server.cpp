// For a build without the library: there is no panel.
#include "shared/user_error.h"
#include "vprinter/web/web_server.h"

namespace vprinter::web {

class WebServer::Implementation {};

bool IsThere() {
    return false;
}

WebServer::WebServer(const http::Address&, const std::string&, const api::Api&, api::Traffic&) {
    throw tools::UserError("--web: this build has no panel");
}

WebServer::~WebServer() = default;

std::string WebServer::Url() const {
    return {};
}

}  // namespace vprinter::web
