// Selection and raw exchanges, with printers that do not do what they should.
#include "installed_printer.h"

namespace {

constexpr uint32_t kShort = 300;

uint32_t EndedGet(uint32_t timeout) {
    uint8_t value = 0;
    return Ended(GetFaxRedials(&value, timeout));
}

using Selection = InstalledPrinter;

TEST_F(Selection, Each_kind_of_wrong_printer_has_its_code) {
    AddPrinter("No bidi", "USB003", {"--no-bidi"});
    AddPrinter("Pool", "USB001,USB002");
    const std::pair<const kestrel_char*, uint32_t> rows[] = {
        {TEXT("\\\\server\\printer"), 0xE0000014}, {TEXT("Nobody"), 1801}, {TEXT("No bidi"), 0xE0000013}};
    OnFreshThread([&] {
        for (const auto& [name, error] : rows)
            EXPECT_EQ(error, Ended(SelectPrinter(name)));
        EXPECT_EQ(0xE0000001u, EndedGet(kShort));
        EXPECT_EQ(kDone, Ended(SelectPrinter(TEXT("Pool"))));
        EXPECT_EQ(0xE0000015u, EndedGet(kShort)) << "it has several ports";
    });
}

TEST_F(Selection, A_foreign_driver_is_refused_and_the_earlier_selection_stays) {
    RunClient({"setup", "--driver", "Foreign Driver"});
    AddPrinter("Foreign", "USB002", {"--driver", "Foreign Driver"});
    // The configuration of the product does not name that driver.
    RunClient({"setup"});
    StartPrinter();
    WithPrinter([] {
        EXPECT_EQ(1801u, Ended(SelectPrinter(TEXT("Foreign"))));
        EXPECT_EQ(kDone, EndedGet(kLong));
    });
}

TEST_F(Selection, No_name_takes_the_last_printer_of_the_product_and_holds_for_its_own_thread_alone) {
    StartPrinter();
    AddPrinter("A", "USB009");
    OnFreshThread([] {
        for (const kestrel_char* const none : {TEXT(""), static_cast<const kestrel_char*>(nullptr)})
            EXPECT_EQ(kDone, Ended(SelectPrinter(none)));
        EXPECT_EQ(kDone, EndedGet(kLong)) << "not the one that answers";
        OnFreshThread([] {
            EXPECT_EQ(100000u, GetLastResponseNum());
            EXPECT_EQ(0xE0000001u, EndedGet(kShort));
        });
    });
}

TEST_F(Selection, A_configuration_that_is_missing_empty_or_half_written_fails_it) {
    const std::filesystem::path file = setup_.At("configuration").Text();
    const std::string whole = FileText(file);
    // Another process each time: a process reads the file once.
    const auto get = [] { return RunClient({"-p", "P", "get", "fax.redials"}).code; };
    for (const size_t size : {size_t{0}, whole.size() / 3}) {
        std::ofstream(file) << whole.substr(0, size);
        EXPECT_EQ(70, get()) << size;
    }
    std::filesystem::remove(file);
    EXPECT_EQ(70, get());
}

TEST_F(Selection, A_setup_that_cannot_put_the_status_monitor_in_its_place_leaves_no_part_of_it) {
    const std::filesystem::path program = setup_.At("statusMonitor").Text();
    std::filesystem::remove(program);
    std::filesystem::create_directories(program / "in the way");
    EXPECT_EQ(70, RunClient({"setup"}).code);
    EXPECT_FALSE(std::filesystem::exists(program.string() + ".new"));
    std::filesystem::remove_all(program);  // under Wine the next case has the same folder
}

class Exchange : public InstalledPrinter {
  protected:
    Exchange() { EXPECT_TRUE(SelectPrinter(kPrinter)) << GetLastError(); }
};

TEST_F(Exchange, A_raw_command_comes_back_judged) {
    StartPrinter();
    char reply[100];
    uint32_t length = 77;
    const auto send = [&](const std::string& request, char* buffer, uint32_t size, uint32_t* received) {
        const auto bytes = static_cast<uint32_t>(request.size());
        return Ended(SendCmd(request.data(), bytes, buffer, size, received, kLong));
    };
    const std::string request = "DeviceSettings.Fax.Redials?";
    EXPECT_EQ(kDone, send(request, reply, sizeof(reply), &length));
    EXPECT_EQ("0000,DeviceSettings.Fax.Redials=3;", std::string(reply, length));
    reply[4] = '#';
    EXPECT_EQ(kDone, send(request, reply, 4, &length));
    EXPECT_EQ("0000#", std::string(reply, length + 1));
    EXPECT_EQ(kDone, send(request, nullptr, 0, &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(kDone, send(request, reply, sizeof(reply), nullptr));
    EXPECT_EQ(22u, send("Nonsense.Key?", reply, sizeof(reply), &length));
    EXPECT_TRUE(std::string(reply, length).starts_with("3400,"));
    EXPECT_EQ(3400u, GetLastResponseNum());
    kestrel_char bad[5];
    GetLastBadResponse(bad, 5);
    EXPECT_EQ(WideText(TEXT("3400")), bad);
    EXPECT_EQ(kSendIncomplete, send(std::string(65792, 'x'), nullptr, 0, &length)) << "too long";
    EXPECT_EQ(kDone, EndedGet(kLong)) << "which harms nobody";
}

TEST_F(Exchange, A_printer_that_forgets_its_lock_lets_others_in) {
    StartPrinter(R"([{"match":"*Redials=7;","lockLost":true}])");
    EXPECT_EQ(kDone, Ended(Lock(kLong)));
    EXPECT_EQ(5, RunClient({"-p", "P", "set", "fax.redials", "4"}).code);
    EXPECT_EQ(kDone, Ended(SetFaxRedials(7, kLong)));
    EXPECT_EQ(0, RunClient({"-p", "P", "set", "fax.redials", "4"}).code);
    EXPECT_EQ(kDone, Ended(Unlock(kLong)));
}

TEST_F(Exchange, A_control_file_switches_faults_on_and_off) {
    StartPrinter("[]", {"--control", Path("control.json")});
    const auto write = [this](const std::string& rules) {
        std::filesystem::rename(Write("new.json", R"({"USB001":{"faults":)" + rules + "}}"),
                                Path("control.json"));
    };
    write(R"([{"match":"*Redials?","responseNumber":1999}])");
    EXPECT_EQ(170u, EndedGet(kLong));
    write(R"([{"match":"*","hung":1}])");
    EXPECT_EQ(170u, EndedGet(kLong)) << "a file that is refused changes nothing";
    EXPECT_THAT(FileText(Path("control.json.refused")), HasSubstr("\"hung\""));
    write("[]");
    EXPECT_EQ(kDone, EndedGet(kLong));
    EXPECT_FALSE(std::filesystem::exists(Path("control.json.refused")));
}

TEST_F(Exchange, A_printer_killed_before_or_after_it_replies_leaves_the_channel_to_the_next_one) {
    for (const auto& [crash, ends] : {std::pair("crashBefore", kNoReply), {"crashAfter", kDone}}) {
        StartPrinter(std::string(R"([{"match":"DeviceSettings.Fax.Redials?",")") + crash + "\":true}]");
        EXPECT_EQ(ends, EndedGet(ends == kDone ? kLong : kShort));
        printer_.Wait();
        const auto start = Clock::now();
        EXPECT_EQ(kSendIncomplete, EndedGet(kShort));
        EXPECT_LT(Clock::now() - start, milliseconds(kLong)) << "one time-out and no more";
        StartPrinter();
        EXPECT_EQ(kDone, EndedGet(kLong));
    }
}

}  // namespace
