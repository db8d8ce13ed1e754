// The address book in files and the status record: what others wrote is read with care.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kestrel/address_book.h"
#include "kestrel/csv.h"
#include "kestrel/device_status.h"
#include "kestrel/failure.h"

namespace {

using Rows = std::vector<cli::CsvRow>;

TEST(KestrelCsv, Reads_what_spreadsheets_write) {
    const struct {
        const char* text;
        Rows rows;
    } cases[] = {
        {"", {}},
        {"a,b\r\nc,d", {{"a", "b"}, {"c", "d"}}},
        {"\xEF\xBB\xBFx,\r\n\n", {{"x", ""}}},
        {"\"a,\"\"b\"\"\",\"two\r\nlines\"\n,\n", {{"a,\"b\"", "two\r\nlines"}, {"", ""}}},
        {"\"\",\"\"\r", {{"", ""}}},
    };
    for (const auto& one : cases)
        EXPECT_EQ(one.rows, cli::ParseCsv(one.text)) << one.text;
    EXPECT_EQ("plain,\"a,b\",\"say \"\"no\"\"\",\"1\n2\"\r\n",
              cli::CsvLine({"plain", "a,b", "say \"no\"", "1\n2"}));
}

TEST(KestrelCsv, Names_the_line_of_a_quote_out_of_place) {
    const struct {
        const char* text;
        const char* said;
    } cases[] = {{"a,b\nc\"d\n", "line 2"}, {"a\n\"x\ny\"z\n", "line 3"}, {"a\n\"open\nmore\n", "line 2"}};
    for (const auto& one : cases) {
        try {
            EXPECT_TRUE(cli::ParseCsv(one.text).empty()) << "taken: " << one.text;
        } catch (const cli::Failure& failure) {
            EXPECT_EQ(0u, failure.text.find(one.said)) << failure.text;
        }
    }
}

TEST(KestrelAddressBook, Comes_back_from_its_file_as_it_was_written) {
    const cli::AddressList& list = cli::FindAddressList("one-touch");
    const std::string file =
        "number,type,name,address\r\n0,fax,\"Smith, \"\"Al\"\"\",030;1\r\n4,email,B\xC3\xBCro,a@b\r\n";
    const auto records = cli::RecordsFromCsv(file, list);
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
    const struct {
        std::string text;
        const char* said;
    } cases[] = {{"0,fax," + longest + "n,1\n", "too long"},
                 {"0,fax,n," + std::string(50, '1') + "\n", "too long"},
                 {"5,fax,n,1\n", "no record"},
                 {"x,fax,n,1\n", "no record"},
                 {"0,telex,n,1\n", "no type"},
                 {"0,fax,n\n", "3 fields"},
                 {"0,fax,n,1\n0,fax,m,2\n", "second time"},
                 {"0,fax,\xE2\x98\x83,1\n", "cannot take"},
                 {"0,fax,\"a\nb\",1\n", "cannot take"}};
    for (const auto& one : cases) {
        try {
            EXPECT_TRUE(cli::RecordsFromCsv(one.text, list).empty()) << "taken: " << one.text;
        } catch (const cli::Failure& failure) {
            EXPECT_EQ(cli::ExitCode::kValueRefused, failure.exit);
            EXPECT_NE(std::string::npos, failure.text.find(one.said)) << failure.text;
        }
    }
}

TEST(KestrelStatus, Reads_no_more_of_a_record_than_its_layout_allows) {
    DeviceStatusRecord record{};
    const auto put = [&record](std::size_t offset, std::uint32_t number) {
        std::memcpy(reinterpret_cast<char*>(&record) + offset, &number, sizeof(number));
    };
    record.state = 4711;
    for (auto& unit : record.text)
        unit = kestrel_char{'x'};
    const cli::DeviceStatus foreign = cli::ReadStatus(record);
    EXPECT_EQ("other", foreign.word);
    EXPECT_EQ(std::string(146, 'x'), foreign.text);
    EXPECT_FALSE(foreign.details);

    put(0, 1316);
    put(4, 1);
    put(12, 0xFFFFFFFF);
    put(16, 1000000);  // inks
    put(20, 5);
    put(24, 1);
    put(28, 50);
    put(32, 77);  // no such ink state
    put(60, 80);
    const cli::DeviceStatus own = cli::ReadStatus(record);
    ASSERT_TRUE(own.details);
    EXPECT_FALSE(own.details->upgradePercent);
    ASSERT_EQ(5u, own.details->inks.size());
    EXPECT_EQ("low", own.details->inks[0].state);
    EXPECT_EQ("unknown", own.details->inks[1].state);
    EXPECT_EQ(80u, own.details->upperTray);
}

}  // namespace
