// Selection and raw exchanges, with printers that do not do what they should.
#include <kestrel/sdk.h>
#include <windows.h>

#include <nlohmann/json.hpp>

#include "channel_puppet.h"
#include "installed_printer.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t kShort = 300;

class Selection : public InstalledPrinter {};

TEST_F(Selection, Each_kind_of_wrong_printer_has_its_code) {
    AddPrinter("No bidi", "USB003", "--no-bidi");
    OnFreshThread([] {
        EXPECT_FALSE(SelectPrinter(TEXT("\\\\server\\printer")));
        EXPECT_EQ(0xE0000014u, GetLastError());
        EXPECT_FALSE(SelectPrinter(TEXT("Nobody")));
        EXPECT_EQ(1801u, GetLastError());
        EXPECT_FALSE(SelectPrinter(TEXT("No bidi")));
        EXPECT_EQ(0xE0000013u, GetLastError());
        uint8_t value = 0;
        EXPECT_FALSE(GetFaxRedials(&value, kShort));
        EXPECT_EQ(0xE0000001u, GetLastError());
    });
}

TEST_F(Selection, A_foreign_driver_is_refused_and_the_earlier_selection_stays) {
    RunClient({"setup", "--driver", "Foreign Driver"});
    EXPECT_EQ(
        0, RunClient({"printers", "add", "Foreign", "--port", "USB002", "--driver", "Foreign Driver"}).code);
    // The configuration of the product does not name that driver.
    RunClient({"setup"});
    StartPrinter();
    OnFreshThread([] {
        ASSERT_TRUE(SelectPrinter(kPrinter));
        EXPECT_FALSE(SelectPrinter(TEXT("Foreign")));
        EXPECT_EQ(1801u, GetLastError());
        uint8_t value = 0;
        EXPECT_TRUE(GetFaxRedials(&value, kLong));
    });
}

TEST_F(Selection, A_printer_on_a_list_of_ports_is_selected_but_not_asked) {
    AddPrinter("Pool", "USB001,USB002");
    OnFreshThread([] {
        EXPECT_TRUE(SelectPrinter(TEXT("Pool")));
        uint8_t value = 0;
        EXPECT_FALSE(GetFaxRedials(&value, kShort));
        EXPECT_EQ(0xE0000015u, GetLastError());
    });
}

TEST_F(Selection, No_name_takes_the_last_printer_of_the_product) {
    StartPrinter();
    AddPrinter("A", "USB009");
    OnFreshThread([] {
        EXPECT_TRUE(SelectPrinter(nullptr));
        uint8_t value = 0;
        EXPECT_TRUE(GetFaxRedials(&value, kLong)) << "not the one that answers";
    });
}

TEST_F(Selection, Holds_for_its_own_thread_alone) {
    StartPrinter();
    OnFreshThread([] {
        ASSERT_TRUE(SelectPrinter(kPrinter));
        OnFreshThread([] {
            EXPECT_EQ(100000u, GetLastResponseNum());
            uint8_t value = 0;
            EXPECT_FALSE(GetCopyQuality(nullptr, kShort));
            EXPECT_FALSE(GetFaxRedials(&value, kShort));
            EXPECT_EQ(0xE0000001u, GetLastError());
        });
    });
}

TEST(Configuration, Missing_empty_or_half_written_fails_the_selection) {
    const CommandResult setup = RunClient({"setup", "--json"});
    ASSERT_EQ(0, setup.code);
    const std::filesystem::path file =
        nlohmann::json::parse(setup.output).at("configuration").get<std::string>();
    ASSERT_EQ(0, RunClient({"printers", "add", "P", "--port", "USB001"}).code);
    std::string whole;
    std::getline(std::ifstream(file), whole, '\0');
    ASSERT_GT(whole.size(), 100u);
    for (const std::string& content : {std::string(), whole.substr(0, whole.size() / 3)}) {
        std::ofstream(file) << content;
        // Another process each time: a process reads the file once.
        const CommandResult result = RunClient({"-p", "P", "get", "fax.redials"});
        EXPECT_EQ(70, result.code) << result.output;
    }
    std::filesystem::remove(file);
    EXPECT_EQ(70, RunClient({"-p", "P", "get", "fax.redials"}).code);
    EXPECT_EQ(0, RunClient({"printers", "remove", "P"}).code);
}

class Exchange : public InstalledPrinter {
  protected:
    static uint32_t ErrorOfGet(uint32_t timeout) {
        uint8_t value = 0;
        return GetFaxRedials(&value, timeout) ? 0 : GetLastError();
    }
};

TEST_F(Exchange, A_raw_command_comes_back_judged) {
    StartPrinter();
    WithPrinter([] {
        const std::string request = "DeviceSettings.Fax.Redials?";
        char reply[100];
        uint32_t length = 77;
        EXPECT_TRUE(SendCmd(request.data(), 27, reply, sizeof(reply), &length, kLong));
        EXPECT_EQ("0000,DeviceSettings.Fax.Redials=3;", std::string(reply, length));
        EXPECT_TRUE(SendCmd(request.data(), 27, reply, 4, &length, kLong));
        EXPECT_EQ(4u, length);
        EXPECT_TRUE(SendCmd(request.data(), 27, nullptr, 0, &length, kLong));
        EXPECT_EQ(0u, length);
        EXPECT_TRUE(SendCmd(request.data(), 27, reply, sizeof(reply), nullptr, kLong));
        EXPECT_FALSE(SendCmd("Nonsense.Key?", 13, reply, sizeof(reply), &length, kLong));
        EXPECT_EQ(22u, GetLastError());
        EXPECT_EQ(0, std::string(reply, length).find("3400,"));
        EXPECT_EQ(3400u, GetLastResponseNum());
        kestrel_char bad[5];
        GetLastBadResponse(bad, 5);
        EXPECT_EQ(WideText(TEXT("3400")), bad);
        EXPECT_EQ(22u, GetLastError());
    });
}

TEST_F(Exchange, A_request_that_is_too_long_is_refused_and_harms_nobody) {
    StartPrinter();
    WithPrinter([] {
        const std::string request(65792, 'x');
        uint32_t length = 0;
        EXPECT_FALSE(SendCmd(request.data(), 65792, nullptr, 0, &length, kLong));
        EXPECT_EQ(0xE0000002u, GetLastError());
        EXPECT_EQ(0u, ErrorOfGet(kLong));
    });
}

TEST_F(Exchange, A_printer_that_misbehaves_gives_its_own_error_and_the_next_call_works) {
    struct Case {
        const char* fault;
        uint32_t error;
    };
    const Case cases[] = {
        {R"("noReply": true)", 0xE0000003},
        {R"("delay": 900)", 0xE0000003},
        {R"("otherProcess": true)", 0xE0000003},
        {R"("aborted": true)", 0},
        {R"("cut": 20)", 0xE0000012},
        {R"("cut": 0)", 0xE0000003},
        {R"("garbage": "hello")", 0xE0000012},
        {R"("responseNumber": 1999)", 170},
        {R"("reply": "0000,X=a;")", 0xE0000011},
        {R"("pad": 65791)", 0xE0000011},
        {R"("reply": "0000,X#70000=;")", 0xE0000012},
    };
    std::string rules;
    for (const Case& row : cases)
        rules += std::string(rules.empty() ? "[" : ",") +
                 R"({"match":"DeviceSettings.Fax.Redials?","times":1,)" + row.fault + "}";
    StartPrinter(rules + "]");
    WithPrinter([&] {
        for (const Case& row : cases) {
            SCOPED_TRACE(row.fault);
            const auto start = Clock::now();
            EXPECT_EQ(row.error, ErrorOfGet(kShort));
            EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(2 * kShort + 250));
            kestrel_char name[64];
            Sleep(700);  // whatever comes late has come
            EXPECT_TRUE(GetFriendlyName(name, kLong)) << GetLastError();
        }
        EXPECT_EQ(0u, ErrorOfGet(kLong));
    });
}

TEST_F(Exchange, No_language_monitor_costs_one_time_out_and_one_that_comes_is_found) {
    OnFreshThread([this] {
        ASSERT_TRUE(SelectPrinter(kPrinter));
        const auto start = Clock::now();
        EXPECT_EQ(0xE0000002u, ErrorOfGet(kShort));
        EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(2 * kShort + 250));
        StartPrinter();
        EXPECT_EQ(0u, ErrorOfGet(kLong));
    });
}

TEST_F(Exchange, A_printer_killed_before_or_after_it_replies_leaves_the_channel_usable) {
    for (const char* crash : {"crashBefore", "crashAfter"}) {
        StartPrinter(std::string(R"([{"match":"DeviceSettings.Fax.Redials?",")") + crash + "\":true}]");
        WithPrinter([&] {
            const uint32_t error = ErrorOfGet(kShort);
            EXPECT_EQ(crash == std::string("crashBefore") ? 0xE0000003u : 0u, error);
            printer_.Wait();
            EXPECT_NE(0u, ErrorOfGet(kShort));
            StartPrinter();
            EXPECT_EQ(0u, ErrorOfGet(kLong));
        });
        printer_.Kill();
        printer_.Wait();
        printer_ = ChildProcess();
    }
}

TEST_F(Exchange, A_client_killed_while_it_waits_does_not_disturb_the_next_one) {
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Redials?","times":1,"delay":400}])");
    ChildProcess victim({KESTREL_CLIENT, "-p", "P", "get", "fax.redials"});
    Sleep(200);
    victim.Kill();
    victim.Wait();
    WithPrinter([] {
        ErrorOfGet(kLong);  // may meet what the dead one left
        EXPECT_EQ(0u, ErrorOfGet(kLong));
    });
}

TEST(VirtualPrinter, A_port_that_is_served_already_is_refused_with_4) {
    ChildProcess first({KESTREL_VPRINTER, "--port", "USB001", "--trace", "none"});
    ASSERT_TRUE(first.ReadLine());
    ChildProcess second({KESTREL_VPRINTER, "--port", "USB001", "--trace", "none"});
    EXPECT_EQ(4, second.Wait());
    first.Kill();
    first.Wait();
    ChildProcess third({KESTREL_VPRINTER, "--port", "USB001", "--trace", "none"});
    EXPECT_TRUE(third.ReadLine());
    third.Terminate();
    EXPECT_EQ(0, third.Wait());
}

}  // namespace
