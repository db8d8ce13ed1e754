// The Kestrel SDK in C++20: one object for a selected printer, every setting with its own type, errors in
// words. Header only, over sdk.h, whose caveats hold here too; link the library as for C.
//
//     #include <kestrel/sdk.hpp>
//     #include <iostream>
//
//     int main() {
//         auto printer = kestrel::Printer::select("Office");
//         if (!printer) return std::cerr << printer.error().message() << '\n', 1;
//         namespace setting = kestrel::setting;
//         if (auto done = printer->set<setting::fax_redials>(5); !done)
//             return std::cerr << done.error().message() << '\n', 1;
//         std::cout << int{printer->get<setting::fax_redials>().value()} << '\n';
//     }
//
// Settings are named as everywhere, with underscores: "fax.redials" is setting::fax_redials. What cannot be
// done with one does not compile. Values are numbers, bool, enumerations, Ipv4, and std::string in UTF-8;
// texts that are passed are UTF-8 as well.
//
// Threads. The library has one selection for each thread, so a Printer is bound to the thread that selected
// it, and a thread has one at a time: each call on another thread fails with SDK_ERROR_WRONG_THREAD, and each
// call after the thread has selected again, or tried to, with SDK_ERROR_SELECTION_LOST. Neither calls the
// library. What is not seen are selections behind this header's back: by SelectPrinter, or by a library or
// executable of the process with a copy of its own of these inline functions, as each DLL of Windows has it;
// and the child of a fork, which must select anew.
//
// Speed. A call costs what the C call costs. Change the time-out seldom: the first call with another one
// announces it to the language monitor, with an exchange of its own.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "sdk.h"
#include "sdk_host.hpp"
#include "sdk_records.hpp"
#include "sdk_result.hpp"
#include "sdk_selection.hpp"
#include "sdk_values.hpp"

#include <kestrel/sdk_settings.hpp>

namespace kestrel {

/// The longest request or reply, in bytes.
inline constexpr std::size_t longest_message = 65791;

namespace detail {

template <typename T>
[[nodiscard]] T* pointer_to(T& value) {
    return &value;
}
template <typename T, std::size_t count>
[[nodiscard]] T* pointer_to(std::array<T, count>& values) {
    return values.data();
}
template <typename T>
[[nodiscard]] T c_argument(T value) {
    return value;
}
[[nodiscard]] inline const kestrel_char* c_argument(const Wide& text) {
    return text.c_str();
}

}  // namespace detail

/// The printer that this thread has selected. Can be moved, not copied; what was moved from fails with
/// SDK_ERROR_SELECTION_LOST. Its end changes nothing: the library keeps the thread's selection.
///
/// Every function that returns a Result fails as the function of the C interface named there, and besides
/// with SDK_ERROR_WRONG_THREAD, SDK_ERROR_SELECTION_LOST, for a text with SDK_ERROR_BAD_TEXT, for a number
/// with SDK_ERROR_BAD_NUMBER, and with SDK_ERROR_DECLINED where the C function leaves 0. It blocks as long.
class [[nodiscard]] Printer {
  public:
    /// Selects an installed printer for this thread; an empty name takes the last one of the product. As
    /// SelectPrinter; SDK_ERROR_NO_PRODUCT_PRINTER when it leaves 0, or is without product configuration.
    [[nodiscard]] static Result<Printer> select(std::string_view name = {},
                                                std::chrono::milliseconds timeout = default_timeout) {
        detail::Wide wide;
        if (!detail::to_wide(name, wide)) return Error::of(SDK_ERROR_BAD_TEXT);
        KestrelForgetError();  // without configuration SelectPrinter leaves what there was
        if (::SelectPrinter(wide.c_str()) == 0) {
            detail::current_selection = 0;
            return Error::of_last_call(SDK_ERROR_NO_PRODUCT_PRINTER);
        }
        detail::current_selection = ++detail::selections;
        return Printer(timeout);
    }

    /// The time allowed for each exchange of the calls that have a time-out in C. Below 0 counts as 0, and
    /// no_limit and above waits without limit.
    [[nodiscard]] std::chrono::milliseconds timeout() const { return std::chrono::milliseconds(timeout_); }
    /// From the next call on.
    void set_timeout(std::chrono::milliseconds timeout) { timeout_ = detail::to_ms(timeout); }

    // --- Settings ---

    /// printer.get<setting::fax_redials>()
    template <ReadableSetting Setting>
    [[nodiscard]] Result<typename Setting::value_type> get() const {
        if (!is_current()) return selection_.misuse();
        typename Setting::buffer buffer{};
        if (Setting::getter(detail::pointer_to(buffer), timeout_) == 0) return Error::of_last_call();
        return Setting::value_of(buffer);
    }

    /// printer.set<setting::fax_redials>(5)
    template <WritableSetting Setting>
    Result<void> set(typename Setting::argument value) {
        return write<Setting>(value);
    }

    /// printer.command<setting::device_restore_defaults>(RestoreScope::Network): the printer acts at once.
    template <CommandSetting Setting>
    Result<void> command(typename Setting::argument value) {
        return write<Setting>(value);
    }

    // --- Session ---

    /// As Lock. The printer is given back when the lock is destroyed.
    [[nodiscard]] Result<PrinterLock> lock() {
        if (auto done = call(::Lock, timeout_); !done) return done.error();
        return PrinterLock(timeout_);
    }
    /// As Cancel.
    Result<void> cancel() { return call(::Cancel); }
    /// As EnableCache.
    Result<void> enable_cache(bool enable) { return call(::EnableCache, as_bool(enable)); }

    /// As GetStatus.
    [[nodiscard]] Result<Status> status() const {
        DeviceStatusRecord record{};
        if (auto done = call(::GetStatus, &record, std::uint32_t{sizeof record}); !done) return done.error();
        return detail::from_c(record);
    }

    /// Sends a request of the printer's command language; the reply comes as bytes. As SendCmd.
    [[nodiscard]] Result<std::string> send(std::string_view request) {
        std::string reply(longest_message, '\0');
        const Result<std::span<char>> filled = send(request, reply);
        if (!filled) return filled.error();
        reply.resize(filled->size());
        return reply;
    }
    /// The same without memory of its own: the beginning of `buffer` that was filled. A longer reply is cut.
    [[nodiscard]] Result<std::span<char>> send(std::string_view request, std::span<char> buffer) {
        std::uint32_t length = 0;
        auto done = call(::SendCmd, request.data(), detail::clamp32(request.size()), buffer.data(),
                         detail::clamp32(buffer.size()), &length, timeout_);
        if (!done) return done.error();
        return buffer.first(length);
    }
    /// As GetLastResponseNum; 100000 on another thread, which has read no reply of this printer.
    [[nodiscard]] std::uint32_t last_response() const {
        return is_current() ? ::GetLastResponseNum() : 100000;
    }

    // --- Maintenance: each starts an action of the printer ---

    /// As CalibrateHead.
    Result<void> calibrate_head() { return call(::CalibrateHead); }
    /// As PrintTestPage.
    Result<void> print_test_page() { return call(::PrintTestPage); }
    /// `deep`: thoroughly, which takes more ink.
    Result<void> clean_head(bool deep = false) { return call(::CleanHead, as_bool(deep)); }
    /// As CheckNozzle.
    Result<void> check_nozzle() { return call(::CheckNozzle); }
    /// As AlignHead.
    Result<void> align_head() { return call(::AlignHead); }
    /// As VTOE.
    Result<void> vtoe() { return call(::VTOE); }

    // --- Address book ---

    /// As GetQuickDialNumbers.
    [[nodiscard]] Result<SpeedDialList> speed_dial_list() const {
        return read_list<SpeedDialList>(::GetQuickDialNumbers);
    }
    /// As SetQuickDialNumbers.
    Result<void> set_speed_dial_list(std::span<const QuickDial, KESTREL_SPEED_DIAL_RECORDS> list) {
        return write_list(::SetQuickDialNumbers, list);
    }
    /// As GetQuickDialButtons.
    [[nodiscard]] Result<OneTouchList> one_touch_list() const {
        return read_list<OneTouchList>(::GetQuickDialButtons);
    }
    /// As SetQuickDialButtons.
    Result<void> set_one_touch_list(std::span<const QuickDial, KESTREL_ONE_TOUCH_RECORDS> list) {
        return write_list(::SetQuickDialButtons, list);
    }
    /// As GetQuickDialButton. `index`: from 0.
    [[nodiscard]] Result<QuickDial> one_touch(std::uint32_t index) const {
        KestrelQuickDial record{};
        if (auto done = call(::GetQuickDialButton, index, &record, timeout_); !done) return done.error();
        return detail::from_c(record);
    }
    /// As SetQuickDialButton. `index`: from 0.
    Result<void> set_one_touch(std::uint32_t index, const QuickDial& entry) {
        KestrelQuickDial record{};
        if (!detail::to_c(entry, record)) return Error::of(SDK_ERROR_BAD_TEXT);
        return call(::SetQuickDialButton, index, &record, timeout_);
    }

    // --- Networks ---

    /// Starts a search and does not wait for its end.
    Result<void> start_search_for_access_points() { return call(::StartSearchForAccessPoints, timeout_); }
    /// Those found so far. As GetNumAccessPoints.
    [[nodiscard]] Result<std::uint32_t> access_point_count() const {
        return read_one<std::uint32_t>(::GetNumAccessPoints);
    }
    /// Those found. As GetAccessPoints.
    [[nodiscard]] Result<std::vector<AccessPoint>> access_points() const {
        std::array<KestrelAccessPoint, KESTREL_MAX_ACCESS_POINTS> records{};
        if (auto done = call(::GetAccessPoints, records.data(), timeout_); !done) return done.error();
        return detail::filled(records);
    }
    /// Lets the printer ping an address; `wait` is the time for each answer, in the printer's own unit.
    Result<void> ping(Ipv4 address, std::uint8_t count, std::uint8_t wait) {
        return call(::SetPing, address.to_number(), count, wait, timeout_);
    }
    /// Since the last ping(). As GetNumOfPingExecuted.
    [[nodiscard]] Result<std::uint32_t> pings_sent() const {
        return read_one<std::uint32_t>(::GetNumOfPingExecuted);
    }
    /// Since the last ping(). As GetNumOfPingSuccess.
    [[nodiscard]] Result<std::uint32_t> pings_answered() const {
        return read_one<std::uint32_t>(::GetNumOfPingSuccess);
    }
    /// Names of the hosts that the printer discovered by multicast DNS.
    [[nodiscard]] Result<std::vector<std::string>> hosts() const {
        std::array<KestrelHost, KESTREL_MAX_HOSTS> records{};
        if (auto done = call(::GetMDNSHostList, records.data(), timeout_); !done) return done.error();
        return detail::filled(records);
    }

    // --- Clock ---

    /// SDK_ERROR_BAD_REPLY when the printer shows what is in no calendar.
    [[nodiscard]] Result<ClockTime> clock() const {
        std::array<std::uint32_t, 5> time{};
        auto& [year, month, day, hour, minute] = time;
        if (auto done = call(::GetDeviceTime, &year, &month, &day, &hour, &minute, timeout_); !done)
            return done.error();
        const auto shown = detail::clock_time(year, month, day, hour, minute);
        if (!shown) return Error::of(SDK_ERROR_BAD_REPLY);
        return *shown;
    }
    /// As SetDeviceTime; SDK_ERROR_BAD_NUMBER for a year before 0.
    Result<void> set_clock(ClockTime time) {
        using namespace std::chrono;
        const auto midnight = floor<days>(time);
        const year_month_day date(midnight);
        const auto minute_of_day = static_cast<std::uint32_t>((time - midnight).count());
        const int year = int{date.year()};
        if (year < 0) return Error::of(SDK_ERROR_BAD_NUMBER);
        return call(::SetDeviceTime, static_cast<std::uint16_t>(year),
                    static_cast<std::uint8_t>(unsigned{date.month()}),
                    static_cast<std::uint8_t>(unsigned{date.day()}),
                    static_cast<std::uint8_t>(minute_of_day / 60),
                    static_cast<std::uint8_t>(minute_of_day % 60), timeout_);
    }
    /// 28 hexadecimal digits, as GetCurrentTimeRTC explains them.
    [[nodiscard]] Result<std::string> rtc() const { return read_text<58>(::GetCurrentTimeRTC); }
    /// Sets the clock to that of this computer. As SetCurrentTimeRTC.
    Result<void> set_clock_from_computer() { return call(::SetCurrentTimeRTC, timeout_); }

    // --- Firmware, capabilities, identity ---

    /// As GetFWVersion.
    [[nodiscard]] Result<FirmwareVersions> firmware_versions() const {
        FirmwareVersions versions;
        std::array<kestrel_char, 64> printer{};
        auto done = call(::GetFWVersion, &versions.lagoon, &versions.customer, printer.data(), timeout_);
        if (!done) return done.error();
        versions.printer = detail::to_utf8(printer.data(), printer.size());
        return versions;
    }
    /// As GetCapFWUpgrade.
    [[nodiscard]] Result<bool> can_upgrade_firmware() const { return read_flag(::GetCapFWUpgrade); }
    /// Hands an upgrade file to the language monitor, which takes up to a minute. As UpgradeFW.
    Result<void> upgrade_firmware(std::string_view path) {
        detail::Wide wide;
        if (!detail::to_wide(path, wide)) return Error::of(SDK_ERROR_BAD_TEXT);
        return call(::UpgradeFW, wide.c_str());
    }
    /// As RefreshFWCapabilities.
    Result<void> refresh_firmware_capabilities() { return call(::RefreshFWCapabilities, timeout_); }

    /// The first character of the RBN version, 0 for an empty one.
    [[nodiscard]] Result<char> rbn_version() const {
        const auto version = read_one<std::uint32_t>(::GetCapRBNVer);
        if (!version) return version.error();
        return static_cast<char>(*version);
    }
    /// As GetCapTOFEdgeOverride.
    [[nodiscard]] Result<bool> can_override_tof_edge() const { return read_flag(::GetCapTOFEdgeOverride); }
    /// The beginning of the capability block, as GetCapabilities.
    Result<void> capabilities(std::span<std::byte> buffer) const {
        return call(::GetCapabilities, static_cast<void*>(buffer.data()), detail::clamp32(buffer.size()),
                    timeout_);
    }
    /// As GetVendorProductIDs.
    [[nodiscard]] Result<UsbIds> usb_ids() const {
        UsbIds ids;
        if (auto done = call(::GetVendorProductIDs, &ids.vendor, &ids.product, timeout_); !done)
            return done.error();
        return ids;
    }
    /// As GetGCPConfigured.
    [[nodiscard]] Result<bool> is_gcp_configured() const { return read_flag(::GetGCPConfigured); }
    /// As GetPennantConfigured.
    [[nodiscard]] Result<bool> is_pennant_configured() const { return read_flag(::GetPennantConfigured); }

    // --- The status monitor and supplies ---

    /// As ShowStatusMonitor.
    Result<void> show_status_monitor() { return call(::ShowStatusMonitor); }
    /// As ShowMaintenance.
    Result<void> show_maintenance() { return call(::ShowMaintenance); }
    /// As ShowAboutBox.
    Result<void> show_about_box() { return call(::ShowAboutBox); }
    /// As OrderSupplies.
    Result<void> order_supplies() { return call(::OrderSupplies); }

  private:
    explicit Printer(std::chrono::milliseconds timeout)
        : selection_(detail::Selection::of_this_thread()), timeout_(detail::to_ms(timeout)) {}

    [[nodiscard]] bool is_current() const noexcept { return selection_.is(detail::current_selection); }
    [[nodiscard]] static kestrel_bool as_bool(bool value) { return static_cast<kestrel_bool>(value); }

    template <typename... Parameter, typename... Argument>
    Result<void> call(kestrel_bool (*function)(Parameter...), Argument... argument) const {
        if (!is_current()) return selection_.misuse();
        if (function(argument...) == 0) return Error::of_last_call();
        return {};
    }

    template <typename Setting>
    Result<void> write(typename Setting::argument value) {
        const auto prepared = Setting::prepare(value);
        if (!prepared) return is_current() ? Error::of(Setting::refusal) : selection_.misuse();
        return call(+Setting::setter, detail::c_argument(*prepared), timeout_);
    }

    template <typename Number>
    [[nodiscard]] Result<Number> read_one(kestrel_bool (*getter)(Number*, std::uint32_t)) const {
        Number value = 0;
        if (auto done = call(getter, &value, timeout_); !done) return done.error();
        return value;
    }
    [[nodiscard]] Result<bool> read_flag(kestrel_bool (*getter)(kestrel_bool*, std::uint32_t)) const {
        const auto value = read_one<kestrel_bool>(getter);
        if (!value) return value.error();
        return *value != 0;
    }
    template <std::size_t bytes>
    [[nodiscard]] Result<std::string> read_text(kestrel_bool (*getter)(kestrel_char*, std::uint32_t)) const {
        std::array<kestrel_char, bytes / sizeof(kestrel_char)> buffer{};
        if (auto done = call(getter, buffer.data(), timeout_); !done) return done.error();
        return detail::to_utf8(buffer.data(), buffer.size());
    }

    template <typename List>
    [[nodiscard]] Result<List> read_list(kestrel_bool (*getter)(KestrelQuickDial*, std::uint32_t)) const {
        std::array<KestrelQuickDial, std::tuple_size_v<List>> records{};
        if (auto done = call(getter, records.data(), timeout_); !done) return done.error();
        List list;
        for (std::size_t i = 0; i < list.size(); ++i)
            list[i] = detail::from_c(records[i]);
        return list;
    }
    template <std::size_t count>
    Result<void> write_list(kestrel_bool (*setter)(const KestrelQuickDial*, std::uint32_t),
                            std::span<const QuickDial, count> list) {
        std::array<KestrelQuickDial, count> records{};
        for (std::size_t i = 0; i < count; ++i)
            if (!detail::to_c(list[i], records[i])) return Error::of(SDK_ERROR_BAD_TEXT);
        return call(setter, records.data(), timeout_);
    }

    detail::Selection selection_;
    std::uint32_t timeout_;
};

}  // namespace kestrel
