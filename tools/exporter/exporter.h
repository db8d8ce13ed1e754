// The module that serves metrics over HTTP, which the client loads only when it is to listen: loading the
// HTTP library takes longer than a whole command of the client. Both are of one release.
#pragma once

#include <functional>
#include <string>

#include "http/address.h"

namespace exporter {

/// Prometheus' text of version 0.0.4, and OpenMetrics 1.0.
enum class Format { Prometheus, OpenMetrics };

struct Setup final {
    http::Address address;
    std::string token;                        // what visitors must know; empty for none
    std::function<std::string(Format)> page;  // called by several threads at a time
};

/// Serves until it is destroyed, which ends what is under way.
class Exporter {
  public:
    Exporter() = default;
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;
    virtual ~Exporter() = default;

    [[nodiscard]] virtual std::string Url() const = 0;
};

/// The module's one export: an exporter that the caller owns, or none, and what the user has to know then.
using BeginFunction = Exporter*(const Setup& setup, std::string& problem);
inline constexpr const char* kBeginName = "KestrelBeginExporter";

}  // namespace exporter
