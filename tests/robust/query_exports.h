// Every exported function that asks the printer for something, called alike.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "catalogue/rows.h"

struct QueryExport {
    std::string name;
    size_t outBytes = 0;
    std::function<bool(uint8_t* out, uint32_t timeoutMs)> call;
    bool clears = false;                      // a failure leaves nothing but zeros
    const catalogue::Row* setting = nullptr;  // of a setting's getter
};

[[nodiscard]] std::vector<QueryExport> QueryExports();
