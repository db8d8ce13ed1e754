// Against the virtual printer, what takes more than one exchange: whole lists and the lock.
#include <kestrel/sdk.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "installed_printer.h"

namespace {

using Families = InstalledPrinter;

TEST_F(Families, Both_lists_of_destinations_are_kept_whole) {
    StartPrinter();
    WithPrinter([] {
        std::array<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> written = {};
        for (uint32_t i = 0; i < written.size(); ++i) {
            written[i].addressType = i % 3;
            // The longest texts, of characters that travel escaped.
            std::fill_n(written[i].name, 39, i % 2 != 0 ? TEXT(';') : TEXT('n'));
            std::fill_n(written[i].address, 49, TEXT('&'));
        }
        std::array<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> read = {};
        ASSERT_EQ(kDone, Ended(SetQuickDialNumbers(written.data(), kLong)));
        ASSERT_EQ(kDone, Ended(GetQuickDialNumbers(read.data(), kLong)));
        EXPECT_EQ(0, std::memcmp(written.data(), read.data(), sizeof(written)));

        ASSERT_EQ(kDone, Ended(SetQuickDialButtons(written.data(), kLong)));
        ASSERT_EQ(kDone, Ended(SetQuickDialButton(4, &written[59], kLong)));
        ASSERT_EQ(kDone, Ended(GetQuickDialButtons(read.data(), kLong)));
        EXPECT_EQ(0, std::memcmp(written.data(), read.data(), 4 * sizeof(written[0])));
        EXPECT_EQ(0, std::memcmp(&written[59], &read[4], sizeof(written[0])));
        EXPECT_FALSE(GetQuickDialButton(5, read.data(), kLong)) << "the printer has five";
    });
}

TEST_F(Families, A_lock_keeps_other_programs_out_until_it_is_given_back_or_its_holder_dies) {
    StartPrinter();
    for (const bool isKilled : {false, true}) {
        ChildProcess holder({KESTREL_CLIENT, "-p", "P", "--json", "lock"});
        int code = 0;
        for (int i = 0; i < 50 && code != 5; ++i) {
            Sleep(100);
            code = RunClient({"-p", "P", "set", "fax.redials", "4"}).code;
        }
        EXPECT_EQ(5, code);
        if (isKilled) {
            holder.Kill();
        } else {
            holder.WriteLine("");
            EXPECT_NE(std::string::npos, holder.ReadAll().find("\"endedBy\": \"enter\""));
        }
        holder.Wait();
        WithPrinter([] { EXPECT_EQ(kDone, Ended(SetFaxRedials(4, kLong))); });
    }
}

}  // namespace
