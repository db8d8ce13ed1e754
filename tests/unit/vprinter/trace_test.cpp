#include "vprinter/trace/trace.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>

#include "catalogue/rows.h"
#include "opl/message_text.h"
#include "opl/readable_text.h"

namespace vprinter {
namespace {

using namespace std::literals;

const std::string kSecurity = "DeviceNetwork.WiFiSettings.Mac_Configuration.Security.";

std::string Shown(std::string_view message, bool showSecrets = false) {
    return opl::MessageText(message, {.endsInSecretKey = showSecrets ? nullptr : catalogue::EndsInSecretKey});
}

TEST(VprinterTrace, Messages_are_shown_readably) {
    const std::pair<std::string, std::string> cases[] = {
        {"Name=a\x1Dx\x1Cy;", "Name=a\\;x\\.y;"},
        {"Name=a\\b\x01\xFF;", "Name=a\\\\b\\x01\\xFF;"},
        {"0000,Key#4=\xC0\xA8\x00\x01;A=1;"s, "0000,Key#4=<C0 A8 00 01>;A=1;"},
        {"Key#9=\x01\x02"s, "Key#9=<01 02>"},  // cut
        {"a#b=c", "a#b=c"},
        {"Key#99999999999999999999=x", "Key#99999999999999999999=x"},
        {"Key#18446744073709551615=x;", "Key#18446744073709551615=<78 3B>"},
    };
    for (const auto& [message, shown] : cases)
        EXPECT_EQ(Shown(message), shown);
    EXPECT_EQ(opl::MessageText(std::string(5000, 'x'), {.maxBytes = 3}), "xxx ... (5000 bytes)");
    EXPECT_EQ(opl::MessageText("Key=1;", {.maxBytes = 2}), "Ke ... (6 bytes)");
    EXPECT_EQ(opl::MessageText("K#2=ab", {.maxBytes = 6}), "K#2=<61 62>");
    EXPECT_EQ(opl::MessageText("K#5=abcde;", {.maxBytes = 6}), "K#5=<61 62 ...> ... (10 bytes)");
}

TEST(VprinterTrace, Secrets_are_hidden_wherever_their_key_stands) {
    const std::string key = kSecurity + "PassPhrase";
    const std::string key3 = kSecurity + "Key3";
    const std::pair<std::string, std::string> cases[] = {
        {key + "=hunter2;", key + "=*****;"},
        {"0000," + key + "=hun=ter2;", "0000," + key + "=*****;"},
        {"0000,A=1&" + key3 + "=hunter2&B=2;", "0000,A=1&" + key3 + "=*****&B=2;"},
        {key + "=hunter2", key + "=*****"},  // cut
        {key + "#7=hunter2;", key + "#7=*****;"},
        {key + "?", key + "?"},
        {kSecurity + "DefaultKey=1;", kSecurity + "DefaultKey=1;"},
    };
    for (const auto& [message, shown] : cases)
        EXPECT_EQ(Shown(message), shown);
    EXPECT_EQ(Shown(key + "=hunter2;", true), key + "=hunter2;");
}

TEST(VprinterTrace, Lines_hold_the_exchange_and_hide_secrets) {
    const std::string request = kSecurity + "Key0=hunter2;";
    const auto time = std::chrono::system_clock::time_point(1'000'000'000'123ms);
    const Exchange exchange = {time, "USB001", 42, request, "0000,A=\x1D;", 1500us, "as scripted"};

    const std::string text = TextLine(exchange, false);
    EXPECT_NE(text.find(".123 USB001 client 42  "), std::string::npos) << text;
    EXPECT_NE(text.find("Key0=*****;  ->  0000,A=\\;;  1.500 ms  ! as scripted\n"), std::string::npos)
        << text;

    EXPECT_EQ(JsonLine(exchange, false),
              R"({"time":"2001-09-09T01:46:40.123Z","printer":"USB001","client":42,"request":")" + kSecurity +
                  R"(Key0=*****;","reply":"0000,A=\\;;","ms":1.5,"remark":"as scripted"})" + '\n');
}

TEST(VprinterTrace, What_a_trace_shows_can_be_written_into_a_script) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    std::string shown;
    opl::AppendReadable(shown, all);
    EXPECT_EQ(opl::FromReadable(shown), all);
    EXPECT_NE(shown.find("~\\x7F\\x80"), std::string::npos) << shown;
    EXPECT_EQ(opl::FromReadable("\\xaf\\xAF"), "\xAF\xAF");
    for (const char* wrong : {"\\", "\\x", "\\x1", "\\xG1", "\\x1G", "\\x`1", "\\x1@", "\\q"})
        EXPECT_FALSE(opl::FromReadable(wrong)) << wrong;
}

}  // namespace
}  // namespace vprinter
