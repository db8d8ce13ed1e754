// Conversations with the virtual printer, as conversations.txt tells them.
#include "asked_printer.h"
#include "opl/readable_text.h"
#include "sections.h"

namespace vprinter {
namespace {

class VprinterConversation : public AskedPrinter, public testing::WithParamInterface<Section> {
  protected:
    void Follow(const std::string& word, const std::string& rest) {
        if (word == ">") {
            reply_ = Ask(Bytes(rest), client_);
        } else if (word == "<") {
            EXPECT_EQ(reply_.substr(0, Bytes(rest).size()), Bytes(rest));
        } else if (word == "=") {
            EXPECT_EQ(reply_, Bytes(rest));
        } else if (word == "by") {
            client_ = static_cast<uint32_t>(std::stoul(rest));
        } else if (word == "wait") {
            tickMs_ += std::stoull(rest);
            localSeconds_ += std::stoll(rest) / 1000;
        } else if (word == "control") {
            EXPECT_EQ(Control(rest), "");
        } else if (word == "refused") {
            const size_t arrow = rest.find(" <- ");
            const std::string said = Control(rest.substr(arrow + 4));
            EXPECT_NE(said.find(rest.substr(0, arrow)), std::string::npos) << said;
        } else {
            ASSERT_EQ(word, "status");
            const size_t blank = rest.find(' ');
            const std::string expected = opl::FromHex(rest.substr(blank)).value();
            const size_t start = std::string_view("0000,ZRGetStatus#1316=").size() + std::stoul(rest);
            EXPECT_EQ(Ask("ZRGetStatus?").substr(start, expected.size()), expected);
        }
    }

  private:
    static std::string Bytes(const std::string& text) { return opl::FromReadable(text).value(); }

    uint32_t client_ = kClient;
    std::string reply_;
};

TEST_P(VprinterConversation, Goes) {
    for (const std::string& line : GetParam().lines) {
        SCOPED_TRACE(line);
        const size_t blank = line.find(' ');
        Follow(line.substr(0, blank), line.substr(blank + 1));
    }
}

std::string NameOf(const testing::TestParamInfo<Section>& conversation) {
    std::string name = conversation.param.title;
    std::ranges::replace(name, ' ', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Printer, VprinterConversation,
                         testing::ValuesIn(Sections(UNIT_TESTS "/vprinter/conversations.txt")), NameOf);

}  // namespace
}  // namespace vprinter
