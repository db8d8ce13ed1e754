// The requests that the library makes of the status monitor.
#pragma once

#include <cstdint>
#include <string_view>

#include "ipc/remote_control_channel.h"

namespace statusmon {

struct RequestKind {
    ipc::RemoteCode code;
    std::string_view letters;  // of the code, the first in its most significant byte
    std::string_view meaning;
    bool namesPrinter;    // its data is a printer's name
    uint32_t patienceMs;  // how long the library waits for the answer
};

inline constexpr RequestKind kRequestKinds[] = {
    {ipc::RemoteCode::Ping, "Ping", "says that it is there", false, 1000},
    {ipc::RemoteCode::UpSt, "UpSt", "brings its status up to date", true, 1000},
    {ipc::RemoteCode::ShoW, "ShoW", "shows the status window", true, 5000},
    {ipc::RemoteCode::ShoM, "ShoM", "shows the maintenance window", true, 5000},
    {ipc::RemoteCode::ShoA, "ShoA", "shows the about box", false, 5000},
    {ipc::RemoteCode::SOIS, "SOIS", "orders supplies", true, 4000},
    {ipc::RemoteCode::SFWU, "SFWU", "makes room for a firmware upgrade", true, 5000},
};
inline constexpr size_t kRequestKindCount = sizeof(kRequestKinds) / sizeof(kRequestKinds[0]);

/// Null when there is no such request. Capitals count: "ShoW" is one, "Show" is none.
[[nodiscard]] constexpr const RequestKind* FindRequestKind(std::string_view letters) {
    for (const RequestKind& kind : kRequestKinds)
        if (kind.letters == letters) return &kind;
    return nullptr;
}
[[nodiscard]] constexpr const RequestKind* FindRequestKind(uint32_t code) {
    for (const RequestKind& kind : kRequestKinds)
        if (static_cast<uint32_t>(kind.code) == code) return &kind;
    return nullptr;
}

}  // namespace statusmon
