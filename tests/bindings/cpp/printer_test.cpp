// sdk.hpp against a virtual printer: what it reads, what it refuses and in which words, and whose it is.
#include <kestrel/sdk.hpp>

#include "installed_status_monitor.h"

namespace {

using namespace kestrel;
using namespace std::chrono_literals;

// Allowed is what the catalogue allows.
static_assert(ReadableSetting<setting::fax_redials> && WritableSetting<setting::fax_redials>);
static_assert(ReadableSetting<setting::device_rpid> && !WritableSetting<setting::device_rpid>);
static_assert(!ReadableSetting<setting::device_camera_mode> && WritableSetting<setting::device_camera_mode>);
static_assert(CommandSetting<setting::device_restore_defaults> &&
              !WritableSetting<setting::device_restore_defaults>);
static_assert(!std::is_copy_constructible_v<Printer> && std::is_nothrow_move_constructible_v<Printer>);
static_assert(std::is_same_v<setting::copy_quantity::value_type, uint8_t>);
static_assert(std::is_same_v<setting::wireless_rssi_dbm::value_type, int32_t>);
static_assert(from_string<FaxMode>("Fine_Black") == FaxMode::FineBlack && !from_string<FaxMode>("fine"));
static_assert(to_string(Layout::_2x2Poster) == "2x2Poster" && to_string(FaxMode{99}).empty());

template <typename T>
tools::Json AsJson(const T& value) {
    if constexpr (std::is_enum_v<T> || std::is_same_v<T, Ipv4>)
        return std::string(to_string(value));
    else
        return value;
}

class Interface : public InstalledStatusMonitor {
  protected:
    // On a fresh thread, with the printer selected.
    static void WithPrinter(const std::function<void(Printer&)>& body) {
        OnFreshThread([&] {
            auto printer = Printer::select("P");
            ASSERT_TRUE(printer) << printer.error().message();
            body(*printer);
        });
    }
    template <typename Outcome>
    static uint32_t Code(const Outcome& outcome) {
        return outcome ? 0 : outcome.error().code;
    }
};

TEST_F(Interface, Every_readable_setting_is_what_the_client_lists_and_is_taken_back) {
    StartPrinter();
    const tools::Json listed =
        tools::Json::Parse(RunClient({"-p", "P", "--json", "list", "--show-secrets"}).output);
    const auto& rows = listed.At("settings").Items();
    ASSERT_EQ(AllSettings::size, rows.size());
    WithPrinter([&](Printer& printer) {
        size_t i = 0;
        AllSettings::for_each([&]<typename Setting>() {
            const tools::Json& row = rows[i++];
            SCOPED_TRACE(row.At("key").Text());
            EXPECT_EQ(Setting::name, row.At("key").Text());
            EXPECT_EQ(ReadableSetting<Setting>, row.At("readable").Flag());
            if constexpr (ReadableSetting<Setting>) {
                const auto value = printer.get<Setting>();
                ASSERT_TRUE(value) << value.error().message();
                EXPECT_EQ(row.At("value"), AsJson(*value));
                if constexpr (WritableSetting<Setting>) {
                    EXPECT_EQ(0u, Code(printer.set<Setting>(*value)));
                }
            }
        });
    });
}

TEST_F(Interface, A_printer_is_its_thread_s_and_only_the_last_one_selected) {
    StartPrinter();
    AddPrinter("Q", "USB001");
    WithPrinter([](Printer& printer) {
        const auto redials = [](Printer& which) { return Code(which.get<setting::fax_redials>()); };
        EXPECT_EQ(0u, redials(printer));
        OnFreshThread([&] {
            const auto refused = printer.get<setting::fax_redials>();
            ASSERT_FALSE(refused);
            EXPECT_EQ(0u, refused.error().message().find("the printer was selected on another thread ("
                                                         "SDK_ERROR_WRONG_THREAD, 0xE0000021); "));
        });
        Printer second = Printer::select("Q").value();
        EXPECT_EQ(SDK_ERROR_SELECTION_LOST, redials(printer));
        Printer moved = std::move(second);
        EXPECT_EQ(SDK_ERROR_SELECTION_LOST, redials(second));
        EXPECT_EQ(0u, redials(moved));
        EXPECT_EQ(1801u, Code(Printer::select("Nobody")));
        EXPECT_EQ(SDK_ERROR_SELECTION_LOST, redials(moved));
    });
}

TEST_F(Interface, A_refused_value_is_told_in_words) {
    StartPrinter();
    WithPrinter([](Printer& printer) {
        const auto refused = printer.set<setting::fax_redials>(200);
        ASSERT_FALSE(refused);
        EXPECT_EQ("ERROR_CRC", refused.error().name);
        EXPECT_EQ(3450u, refused.error().response);
        EXPECT_NE(std::string::npos, refused.error().message().find("check the value that was sent"));
        EXPECT_THROW(refused.value(), Exception);
        EXPECT_EQ(SDK_ERROR_BAD_NUMBER, Code(printer.set<setting::fax_redials>(256)));
        EXPECT_EQ(SDK_ERROR_BAD_NUMBER, Code(printer.set<setting::copy_quantity>(128u)));
        EXPECT_EQ(87u, Code(printer.set<setting::fax_mode>(FaxMode{99})));
        for (const std::string_view text :
             {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80", "\xE2\x82"})
            EXPECT_EQ(SDK_ERROR_BAD_TEXT, Code(printer.set<setting::device_name>(text))) << text;
        EXPECT_EQ(SDK_ERROR_BAD_TEXT, Code(printer.set<setting::device_name>(std::string_view("a\0b", 3))));
        EXPECT_EQ(SDK_ERROR_BAD_TEXT, Code(printer.set_one_touch(0, {.name = std::string(41, 'x')})));
    });
}

TEST_F(Interface, A_lock_lasts_as_long_as_its_guard) {
    StartPrinter();
    const auto asked = [] { return RunClient({"-p", "P", "set", "fax.redials", "4"}).code; };
    WithPrinter([&](Printer& printer) {
        {
            PrinterLock lock = printer.lock().value();
            EXPECT_EQ(5, asked());
            EXPECT_EQ(212u, Code(Printer::select("P")));
            EXPECT_EQ(SDK_ERROR_SELECTION_LOST, Code(printer.lock()));
            PrinterLock moved = std::move(lock);
            OnFreshThread([&] { EXPECT_EQ(SDK_ERROR_WRONG_THREAD, Code(moved.unlock())); });
            EXPECT_EQ(5, asked());
        }
        EXPECT_EQ(0, asked());
        printer = Printer::select("P").value();
        PrinterLock lock = printer.lock().value();
        EXPECT_EQ(0u, Code(lock.unlock()));
        EXPECT_EQ(SDK_ERROR_SELECTION_LOST, Code(lock.unlock()));
        EXPECT_EQ(0, asked());
    });
}

TEST_F(Interface, Records_clock_and_firmware_come_as_the_client_has_them) {
    StartPrinter();
    const auto client = [](std::vector<std::string> words) {
        words.insert(words.begin(), {"-p", "P", "--json"});
        return tools::Json::Parse(RunClient(words).output);
    };
    WithPrinter([&](Printer& printer) {
        const QuickDial office{AddressType::Email, "\xC3\x84\xC3\xB6", "office@example.com"};
        ASSERT_EQ(0u, Code(printer.set_one_touch(4, office)));
        EXPECT_EQ(office, printer.one_touch(4).value());
        SpeedDialList list = printer.speed_dial_list().value();
        list[59] = {AddressType::Fax, std::string(39, 'n'), "0301234567"};
        ASSERT_EQ(0u, Code(printer.set_speed_dial_list(list)));
        EXPECT_EQ(list[59].address, printer.speed_dial_list().value()[59].address);

        const ClockTime leap_day = std::chrono::local_days(std::chrono::year(2028) / 2 / 29) + 23h + 59min;
        ASSERT_EQ(0u, Code(printer.set_clock(leap_day)));
        EXPECT_LE(printer.clock().value() - leap_day, 1min);

        EXPECT_EQ(client({"firmware", "show"}).At("printer").Text(),
                  printer.firmware_versions().value().printer);
        ASSERT_EQ(0u, Code(printer.start_search_for_access_points()));
        while (printer.access_point_count().value() == 0)
            std::this_thread::sleep_for(50ms);
        const auto points = printer.access_points().value();
        ASSERT_FALSE(points.empty());
        EXPECT_EQ(17u, points[0].mac_address.size());
        EXPECT_EQ(0u, printer.send("ZRPing?").value().find("0000,"));
        EXPECT_EQ(0u, Code(printer.ping({192, 168, 0, 1}, 1, 1)));

        Configure();
        const Status status = printer.status().value();
        EXPECT_TRUE(status.is_known());
        EXPECT_EQ(client({"status"}).At("text").Text(), status.text);
    });
}

TEST_F(Interface, Addresses_are_read_as_people_write_them) {
    EXPECT_EQ((Ipv4{192, 168, 0, 5}), Ipv4::parse("192.168.0.5"));
    EXPECT_EQ("10.0.0.255", to_string(Ipv4{10, 0, 0, 255}));
    for (const char* const wrong : {"", "1.2.3", "1.2.3.4.", "1.2.3.256", "1.2.3.-4", "1.2.3.4 ", "1,2.3.4"})
        EXPECT_FALSE(Ipv4::parse(wrong)) << wrong;
}

}  // namespace
