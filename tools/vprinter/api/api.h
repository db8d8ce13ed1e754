// The interface of the panel and of programs: requests under /api/, answered in JSON. docs/vprinter-api.json
// describes it. Knows no network: whoever serves it hands requests in that have passed the gate.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/json.h"
#include "vprinter/api/printer_parts.h"

namespace vprinter::api {

struct Answer {
    int status = 200;
    tools::Json body;
};

/// The printers of this process.
struct ServedPrinters {
    std::vector<std::string> ports;
    /// Runs `work` on the serving thread of a printer, by its place in `ports`, between two of its requests;
    /// false when it does not get there in time.
    std::function<bool(size_t printer, const PrinterWork& work)> run;
};

/// May be used from several threads.
class Api final {
  public:
    explicit Api(ServedPrinters printers) : printers_(std::move(printers)) {}

    /// `target`: path and query as sent, percent signs and all.
    [[nodiscard]] Answer Ask(std::string_view method, std::string_view target, std::string_view body) const;

    /// What is said when a request is refused.
    [[nodiscard]] static Answer Refused(int status, std::string_view what, std::string_view advice);

  private:
    [[nodiscard]] Answer Carried(std::string_view method, std::string_view target,
                                 std::string_view body) const;
    [[nodiscard]] tools::Json ListPrinters() const;
    void Run(size_t printer, const PrinterWork& work) const;

    ServedPrinters printers_;
};

}  // namespace vprinter::api
