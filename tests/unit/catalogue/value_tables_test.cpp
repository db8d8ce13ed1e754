// The words of the enumerations; what the rows owe to each other does not compile otherwise.
#include <string_view>

#include "catalogue/rows.h"
#include "sections.h"

namespace catalogue {
namespace {

TEST(ValueTables, Have_the_words_and_numbers_that_callers_know) {
    ForEachCase(
        UNIT_TESTS "/catalogue/words.txt", "Words", [](const std::string& name, const std::string& words) {
            const auto row = std::ranges::find(Rows(), name, &Row::name);
            ASSERT_NE(row, Rows().end());
            std::string found;
            for (const EnumEntry& word : row->words)
                found +=
                    (found.empty() ? "" : " ") + std::string(word.name) + '=' + std::to_string(word.value);
            EXPECT_EQ(words, found);
        });
}

TEST(ValueTables, Words_are_compared_letter_for_letter) {
    EXPECT_EQ(FindByName(kFaxMode, "fine_black"), nullptr);
    EXPECT_EQ(FindByName(kFaxMode, ""), nullptr);
    EXPECT_EQ(FindByName(kWirelessRegion, "Japan_MK"), nullptr);
    EXPECT_EQ(FindByName(kWirelessRegion, "Japan_MKK1")->value, 6u);
    EXPECT_EQ(FindByName(kLanguage, std::string_view("Dutch\0", 6)), nullptr);
    EXPECT_EQ(FindByValue(kLanguage, 15), nullptr);
}

}  // namespace
}  // namespace catalogue
