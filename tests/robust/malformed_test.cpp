// Replies that are almost right, to every function that asks the printer for something: shortened at each
// place, and with each byte changed into each other.
#include <cstring>
#include <mutex>

#include "contract/handle_support.h"
#include "effort.h"
#include "export_call.h"
#include "installed_printer.h"
#include "ipc/opl_channel.h"
#include "kwt/strings.h"
#include "opl/opl_parser.h"
#include "query_exports.h"
#include "vprinter/requests/responder.h"

namespace {

constexpr uint32_t kTimeoutMs = 5000;

/// Answers as the virtual printer does, except one request.
class Counterpart final : public ipc::OPLChannel {
  public:
    void OnMessage(const void* data, size_t length) override {
        const std::lock_guard guard(lock_);
        const std::string request(static_cast<const char*>(data), length);
        const std::string reply = wrongFor_ == request ? wrong_ : std::string(responder_.Answer(request, 1));
        if (wrongFor_.empty()) seen_.emplace_back(request, reply);
        Send(reply.data(), static_cast<uint32_t>(reply.size()), kTimeoutMs);
    }
    using Exchanges = std::vector<std::pair<std::string, std::string>>;
    // Since the last call; the right answers alone.
    Exchanges TakeSeen() {
        const std::lock_guard guard(lock_);
        wrongFor_.clear();
        return std::exchange(seen_, {});
    }
    void AnswerWrongly(const std::string& request, std::string reply) {
        const std::lock_guard guard(lock_);
        wrongFor_ = request;
        wrong_ = std::move(reply);
    }

  private:
    std::mutex lock_;
    vprinter::DeviceModel model_;
    vprinter::Responder responder_{model_};
    std::string wrongFor_;
    std::string wrong_;
    Exchanges seen_;
};

// Memory between margins that nobody may write to.
class Guarded final {
  public:
    static constexpr uint8_t kUntouched = 0xA5;

    explicit Guarded(size_t size) : bytes_(size + 2 * kMargin) { Fill(); }
    void Fill() { std::ranges::fill(bytes_, kUntouched); }
    [[nodiscard]] uint8_t* Data() { return bytes_.data() + kMargin; }
    [[nodiscard]] const uint8_t* Data() const { return bytes_.data() + kMargin; }
    [[nodiscard]] bool IsAll(uint8_t byte) const { return Are(kMargin, bytes_.size() - kMargin, byte); }
    [[nodiscard]] bool IsIntactAround() const {
        return Are(0, kMargin, kUntouched) && Are(bytes_.size() - kMargin, bytes_.size(), kUntouched);
    }

  private:
    static constexpr size_t kMargin = 256;
    [[nodiscard]] bool Are(size_t from, size_t to, uint8_t byte) const {
        return std::all_of(&bytes_[from], &bytes_[0] + to, [byte](uint8_t own) { return own == byte; });
    }

    std::vector<uint8_t> bytes_;
};

constexpr DWORD kDocumented[] = {
    0, 2, 22, 23, 31, 87, 170, 1392, 1460, 4319, kNoReply, kBadReply, kUnexpectedReply};

template <typename Value>
Value Out(const Guarded& out) {
    Value value;
    std::memcpy(&value, out.Data(), sizeof(value));
    return value;
}

/// Whether a success delivered what the reply says, as the reader of its values has it.
bool IsRight(const catalogue::Row& row, const Guarded& out, const std::string& reply) {
    using Reader = opl::OPLParser;
    using catalogue::Type;
    std::string text;
    int32_t number = 0;
    uint8_t flag = 0;
    std::vector<uint8_t> block;
    switch (row.readType) {
        case Type::Bool:
            return Reader::GetBoolValue(reply, flag) && Out<uint8_t>(out) == flag;
        case Type::Address:
            return Reader::GetBinaryValue(reply, block) && block.size() == 4 &&
                   std::memcmp(block.data(), out.Data(), 4) == 0;
        case Type::Enum:
            return Reader::GetValue(reply, text) &&
                   std::ranges::any_of(row.words, [&](const catalogue::EnumEntry& word) {
                       return text == word.name && word.value == Out<uint32_t>(out);
                   });
        case Type::Text:
            if (!Reader::GetValue(reply, text)) return false;
            return WideText(kwt::WideString(text == "(null)" ? "" : text.c_str()).GetBuffer())
                       .substr(0, row.MaxCharacters()) == reinterpret_cast<const WCHAR*>(out.Data());
        default:
            return Reader::GetIntValue(reply, number) &&
                   (std::memcmp(&number, out.Data(), OutBytes(row)) == 0 ||
                    (row.name.ends_with("-level") && Out<uint8_t>(out) == 100));
    }
}

class MalformedReplies : public InstalledPrinter {
  protected:
    MalformedReplies()
        : running_(ManualEvent(TEXT("ZRIJ9900StatMonClass-01042005"))),
          squatter_(ManualEvent(TEXT("Global\\ZRIJ9900StatMonClass-01042005RemoteControlChannelCmd"))) {
        SetEvent(running_);
    }

    void Try(const QueryExport& query, const std::string& request, const std::string& reply, bool isShort) {
        server_.AnswerWrongly(request, reply);
        out_->Fill();
        const bool done = query.call(out_->Data(), kTimeoutMs);
        const DWORD error = GetLastError();
        ++tried_;
        const auto explain = [&] {
            return testing::Message() << query.name << " " << done << " " << error << ": " << reply;
        };
        ASSERT_TRUE(out_->IsIntactAround()) << explain();
        ASSERT_NE(std::ranges::find(kDocumented, error), std::end(kDocumented)) << explain();
        ASSERT_TRUE(!done || error == 0) << explain();
        ASSERT_FALSE(done && isShort && query.setting != nullptr) << explain();
        ASSERT_TRUE(done || !query.clears || out_->IsAll(0)) << explain();
        if (query.setting == nullptr) return;
        if (done) {
            ASSERT_TRUE(IsRight(*query.setting, *out_, reply)) << explain();
            return;
        }
        ASSERT_NE(0u, error) << explain();
        if (query.setting->readType == catalogue::Type::Enum) {
            ASSERT_TRUE(out_->IsAll(Guarded::kUntouched)) << explain();
        }
        if (query.setting->readType == catalogue::Type::Text) {
            ASSERT_EQ(0, Out<WCHAR>(*out_)) << explain();
        }
    }

    /// All malformed replies to one request, or in a short run as many as `most`.
    void TryAll(const QueryExport& query, const std::string& request, const std::string& reply, size_t most) {
        const size_t all = reply.size() * 256;
        std::mt19937 random = effort.Random();
        for (size_t i = 0; i < std::min(all, most) && !HasFatalFailure(); ++i) {
            const size_t chosen = most < all ? random() % all : i;
            std::string wrong = reply;
            const size_t place = chosen / 256;
            // Of the 256 changes of a byte, the one that changes nothing stands for the end before it.
            const auto byte = static_cast<char>(chosen);
            const bool isShort = byte == reply[place];
            isShort ? wrong.resize(place) : static_cast<void>(wrong[place] = byte);
            Try(query, request, wrong, isShort);
        }
    }

    void TryExport(const QueryExport& query) {
        out_ = std::make_unique<Guarded>(query.outBytes);
        server_.TakeSeen();
        ASSERT_TRUE(query.call(out_->Data(), kTimeoutMs)) << query.name << " " << GetLastError();
        const auto seen = server_.TakeSeen();
        if (query.setting != nullptr) {
            ASSERT_TRUE(IsRight(*query.setting, *out_, seen.back().second)) << query.name;
        }
        constexpr size_t kLongMost = 100'000;
        const auto most = static_cast<size_t>(effort.Of(kLongMost, 200)) / seen.size() + 1;
        for (const auto& [request, reply] : seen)
            if (!request.starts_with("ZRTimeoutParam") && !HasFatalFailure())
                TryAll(query, request, reply, most);
    }

    Handle running_;
    Handle squatter_;  // no status monitor that could be asked, so nobody waits for one
    Counterpart server_;
    std::unique_ptr<Guarded> out_;
    long tried_ = 0;
};

TEST_F(MalformedReplies,
       Every_query_gives_the_right_value_or_a_documented_error_and_writes_its_buffer_alone) {
    ASSERT_TRUE(
        server_.Open(ipc::ChannelRole::Server, TEXT("ZRIJ9900StatMonClass-01042005OPLChannelUSB001")));
    ASSERT_TRUE(server_.StartServerThread());
    const std::vector<QueryExport> queries = QueryExports();
    WithPrinter([&] {
        for (const QueryExport& query : queries)
            if (!HasFatalFailure()) TryExport(query);
    });
    std::printf("%zu functions, %ld malformed replies\n", queries.size(), tried_);
}

}  // namespace
