// What an installation came to: on winport printers and ports are really made; on Windows stand-ins of the
// system's own programs keep what they were asked for.
#pragma once

#include <windows.h>

#include <string>

#include "kwt/wide_text.h"

class Installation final {
  public:
    Installation();
    ~Installation();
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

    [[nodiscard]] bool HasNetworkPort(const WideText& name, const WideText& host, DWORD number) const;
    [[nodiscard]] bool HasDriver(const WideText& inf, const WideText& model) const;
    [[nodiscard]] bool HasPrinter(const WideText& name, const WideText& inf, const WideText& model,
                                  const WideText& port) const;
    [[nodiscard]] bool IsDefault(const WideText& printer) const;
};
