#include "kestrel/log/page.h"

#include "sections.h"
#include "shared/json.h"

namespace cli {
namespace {

size_t Count(std::string_view text, std::string_view what) {
    const size_t at = text.find(what);
    return at == std::string_view::npos ? 0 : 1 + Count(text.substr(at + 1), what);
}

tools::Json DataOf(const std::string& page) {
    constexpr std::string_view kBegin = R"(<script type="application/json" id="log">)";
    const size_t begin = page.find(kBegin) + kBegin.size();
    return tools::Json::Parse(page.substr(begin, page.find("</script>", begin) - begin));
}

TEST(LogPage, Nothing_of_the_file_becomes_markup_and_nothing_is_fetched) {
    const std::string evil = "</script><script>alert(1)</script><!--";
    tools::ExchangeLog log;
    log.exchanges = {{evil, evil, 7, "DeviceSettings.System.Name=" + evil + ";", evil, 1.5, 0, evil}};
    const std::string page = LogPage(log);
    EXPECT_EQ(Count(LogPage({}), "<script"), Count(page, "<script"));
    EXPECT_EQ(Count(LogPage({}), "</script"), Count(page, "</script"));
    EXPECT_EQ(0u, Count(page, "<!--"));
    EXPECT_EQ(evil, DataOf(page).At("exchanges").Items().at(0).At("reply").Text());
    EXPECT_EQ(Count(page, "http://www.w3.org/2000/svg"), Count(page, "://"));
    for (const std::string_view reference : {"src=", "href=", "@import", "url(", "innerHTML"})
        EXPECT_EQ(0u, Count(page, reference)) << reference;
}

TEST(LogPage, Errors_come_in_words_and_the_counts_are_those_of_the_file) {
    tools::ExchangeLog log;
    log.isRecord = true;
    log.exchanges = {
        {"t", "USB001", 7, "DeviceSettings.Fax.Redials?", "0000,DeviceSettings.Fax.Redials=3;", 1, 0, ""},
        {"t", "USB001", 7, "ZRGetStatus?", {}, 500, 0xE0000003, ""},
        {"t", "USB001", 7, "DeviceSettings.Fax.Rings?", "1999,busy;", 1, 170, ""}};
    const tools::Json data = DataOf(LogPage(log));
    EXPECT_EQ(3, data.At("count"));
    EXPECT_EQ(2, data.At("failed"));
    const auto& exchanges = data.At("exchanges").Items();
    EXPECT_EQ("no reply came in time [0xE0000003]", exchanges.at(1).At("error").Text());
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "; 1999: ", exchanges.at(2).At("error").Text());
}

TEST(LogPage, Requests_are_told_in_words) {
    ForEachCase(UNIT_TESTS "/kestrel/log_words.txt", "Words",
                [](const std::string& request, const std::string& words) {
                    EXPECT_EQ(words, RequestWords(request));
                });
    EXPECT_EQ("set  to ", RequestWords("#"));
}

}  // namespace
}  // namespace cli
