// The address book in files and the status record: what others wrote is read with care.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

#include "kestrel/printer/address_book.h"
#include "kestrel/printer/device_status.h"
#include "kestrel/text/csv.h"
#include "refusal.h"

namespace {

TEST(KestrelCsv, Reads_what_spreadsheets_write) {
    const std::pair<const char*, std::vector<cli::CsvRow>> cases[] = {
        {"", {}},
        {"a,b\r\nc,d", {{"a", "b"}, {"c", "d"}}},
        {"\xEF\xBB\xBFx,\r\n\n", {{"x", ""}}},
        {"\"a,\"\"b\"\"\",\"two\r\nlines\"\n,\n", {{"a,\"b\"", "two\r\nlines"}, {"", ""}}},
        {"\"\",\"\"\r", {{"", ""}}},
    };
    for (const auto& [text, rows] : cases)
        EXPECT_EQ(rows, cli::ParseCsv(text)) << text;
    EXPECT_EQ("plain,\"a,b\",\"say \"\"no\"\"\",\"1\n2\"\r\n",
              cli::CsvLine({"plain", "a,b", "say \"no\"", "1\n2"}));
}

TEST(KestrelCsv, Names_the_line_of_a_quote_out_of_place) {
    for (const auto& [text, line] : {std::pair("a,b\nc\"d\n", "line 2"),
                                     {"a\n\"x\ny\"z\n", "line 3"},
                                     {"a\n\"open\nmore\n", "line 2"}}) {
        const auto failure = FailureOf([&] { return cli::ParseCsv(text); });
        ASSERT_TRUE(failure) << text;
        EXPECT_TRUE(failure->text.starts_with(line)) << failure->text;
    }
}

TEST(KestrelAddressBook, Comes_back_from_its_file_as_it_was_written) {
    const std::string file =
        "number,type,name,address\r\n0,fax,\"Smith, \"\"Al\"\"\",030;1\r\n4,email,B\xC3\xBCro,a@b\r\n";
    const auto records = cli::RecordsFromCsv(file, cli::FindAddressList("one-touch"));
    ASSERT_EQ(5u, records.size());
    EXPECT_EQ(1u, records[0].addressType);
    EXPECT_TRUE(cli::IsEmpty(records[1]));
    EXPECT_EQ(2u, records[4].addressType);
    EXPECT_EQ(0xFC, records[4].name[1]);
    EXPECT_EQ(file, cli::CsvFromRecords(records));
}

TEST(KestrelAddressBook, Refuses_a_file_that_the_printer_cannot_hold) {
    const std::string longest(39, 'n');
    const cli::AddressList& list = cli::FindAddressList("one-touch");
    EXPECT_EQ(5u, cli::RecordsFromCsv("0,fax," + longest + "," + std::string(49, '1') + "\n", list).size());
    const std::pair<std::string, const char*> cases[] = {
        {"0,fax," + longest + "n,1\n", "too long"},
        {"0,fax,n," + std::string(50, '1') + "\n", "too long"},
        {"5,fax,n,1\n", "no record"},
        {"x,fax,n,1\n", "no record"},
        {"0,telex,n,1\n", "no type"},
        {"0,fax,n\n", "3 fields"},
        {"0,fax,n,1\n0,fax,m,2\n", "second time"},
        {"0,fax,\xE2\x98\x83,1\n", "cannot take"},
        {"0,fax,\"a\nb\",1\n", "cannot take"},
    };
    for (const auto& [text, reason] : cases) {
        const auto failure = FailureOf([&text = text, &list] { return cli::RecordsFromCsv(text, list); });
        ASSERT_TRUE(failure) << text;
        EXPECT_EQ(cli::ExitCode::ValueRefused, failure->exit);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, reason, failure->text);
    }
}

TEST(KestrelStatus, Reads_no_more_of_a_record_than_its_layout_allows) {
    DeviceStatusRecord record{};
    record.state = 4711;
    std::fill(std::begin(record.text), std::end(record.text), kestrel_char{'x'});
    const cli::DeviceStatus foreign = cli::ReadStatus(record);
    EXPECT_EQ("other", foreign.word);
    EXPECT_EQ(std::string(146, 'x'), foreign.text);
    EXPECT_FALSE(foreign.details);

    // The size, the layout, no upgrade, absurdly many inks, the states of two of them, the upper tray.
    constexpr std::pair<std::size_t, std::uint32_t> kNumbers[] = {
        {0, 1316}, {4, 1}, {12, 0xFFFFFFFF}, {16, 1000000}, {24, 1}, {32, 77}, {60, 80}};
    for (const auto& [offset, number] : kNumbers)
        std::memcpy(reinterpret_cast<char*>(&record) + offset, &number, sizeof(number));
    const cli::DeviceStatus own = cli::ReadStatus(record);
    ASSERT_TRUE(own.details);
    EXPECT_FALSE(own.details->upgradePercent);
    ASSERT_EQ(5u, own.details->inks.size());
    EXPECT_EQ("low", own.details->inks[0].state);
    EXPECT_EQ("unknown", own.details->inks[1].state);
    EXPECT_EQ(80u, own.details->upperTray);
}

}  // namespace
