// What sdk.hpp has for the computer itself, without a selected printer. May be called on any thread.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "sdk_records.hpp"
#include "sdk_result.hpp"

namespace kestrel {

namespace detail {

/// Texts of one call, all of which must be UTF-8.
template <typename... Text>
[[nodiscard]] bool all_to_wide(std::array<Wide, sizeof...(Text)>& wide, const Text&... text) {
    std::size_t i = 0;
    return (to_wide(text, wide[i++]) && ...);
}

}  // namespace detail

/// The version of the interface.
[[nodiscard]] inline std::uint32_t sdk_version() {
    return ::GetSDKVersion();
}

/// Whether the status monitor's window is always shown to the current user. As GetStatusMonitorDisplayMode.
[[nodiscard]] inline bool is_status_monitor_always_shown() {
    return ::GetStatusMonitorDisplayMode() != 0;
}
/// Stores it for the current user. As SetStatusMonitorDisplayMode.
inline Result<void> show_status_monitor_always(bool always) {
    if (::SetStatusMonitorDisplayMode(always ? 1 : 0) == 0) return Error::of_last_call();
    return {};
}

/// Makes a port of the Standard TCP/IP port monitor and returns its name. As AddNetPort.
[[nodiscard]] inline Result<std::string> add_net_port(std::string_view host, std::uint32_t port = 9100,
                                                      std::string_view name = {}) {
    std::array<detail::Wide, 2> wide;
    kestrel_char port_name[64] = {};
    if (!detail::all_to_wide(wide, host, name) || wide[1].size() >= std::size(port_name))
        return Error::of(SDK_ERROR_BAD_TEXT);
    std::copy(wide[1].begin(), wide[1].end(), port_name);
    if (::AddNetPort(wide[0].c_str(), port, port_name) == 0) return Error::of_last_call();
    return detail::text_of(port_name);
}

/// Makes a printer with a driver of a setup information file. As AddDriverInstance.
inline Result<void> add_driver_instance(const DriverInstance& instance) {
    std::array<detail::Wide, 4> wide;
    if (!detail::all_to_wide(wide, instance.printer_name, instance.inf_path, instance.model, instance.port))
        return Error::of(SDK_ERROR_BAD_TEXT);
    const bool done = ::AddDriverInstance(wide[0].c_str(), wide[1].c_str(), wide[2].c_str(), wide[3].c_str(),
                                          static_cast<kestrel_bool>(instance.make_default)) != 0;
    return done ? Result<void>() : Error::of_last_call();
}

/// Installs the driver of a model, without a printer. As AddDriverFiles.
inline Result<void> add_driver_files(std::string_view inf_path, std::string_view model) {
    std::array<detail::Wide, 2> wide;
    if (!detail::all_to_wide(wide, inf_path, model)) return Error::of(SDK_ERROR_BAD_TEXT);
    if (::AddDriverFiles(wide[0].c_str(), wide[1].c_str()) == 0) return Error::of_last_call();
    return {};
}

}  // namespace kestrel
