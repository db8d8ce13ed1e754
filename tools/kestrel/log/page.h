// The page that shows a log of exchanges.
#pragma once

#include <string>
#include <string_view>

#include "shared/exchange_log.h"

namespace cli {

// The page without its data, whose place kLogDataMark holds.
extern const std::string_view kLogPage;
inline constexpr std::string_view kLogDataMark = "KESTREL_LOG_DATA";

// One file that needs no other. Nothing of the log becomes markup.
[[nodiscard]] std::string LogPage(const tools::ExchangeLog& log);

// A request in words: "get fax.redials", "set fax.redials to 5", "status?"; several joined by commas.
// `request` is in its readable form.
[[nodiscard]] std::string RequestWords(std::string_view request);

}  // namespace cli
