// A selected printer: settings and raw requests.
#pragma once

#include <catalogue/rows.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "kestrel/printer/library.h"
#include "kestrel/settings/values.h"

namespace cli {

struct RawReply final {
    std::string bytes;
    uint32_t responseNumber = 0;  // 0 when the reply had none
};

// One selected printer. A selection holds for the thread that made it: a Printer is used by its thread alone.
// Every operation throws the Failure of the library's call.
class Printer final {
  public:
    // An empty name lets the library choose the installed printer of the product.
    Printer(const Library& library, const std::string& product, const std::string& name, uint32_t timeoutMs);

    // Milliseconds for each exchange from now on.
    void SetTimeout(uint32_t timeoutMs) { timeoutMs_ = timeoutMs; }

    [[nodiscard]] Value Get(const catalogue::Row& row) const;
    void Set(const catalogue::Row& row, const Value& value) const;
    // Reads a setting back; a printer that has kept another value is a value failure.
    void Verify(const catalogue::Row& row, const Value& wanted) const;

    // One request of the command language as it stands; a reply judged bad is a failure that shows it.
    [[nodiscard]] RawReply Send(std::string_view request) const;

    [[nodiscard]] const Library& GetLibrary() const { return library_; }

  private:
    const Library& library_;
    uint32_t timeoutMs_;
};

}  // namespace cli
