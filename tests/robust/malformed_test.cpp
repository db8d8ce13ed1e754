// Replies that are almost right, to every function that asks the printer for something: shortened at each
// place, and with each byte changed into each other.
#include <windows.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "effort.h"
#include "installed_printer.h"
#include "ipc/opl_channel.h"
#include "opl/value_escape.h"
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
        std::string reply = wrongFor_ == request ? wrong_ : std::string(responder_.Answer(request, 1));
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

    explicit Guarded(size_t size)
        : bytes_(size + 2 * kMargin), own_(bytes_.begin() + kMargin, bytes_.end() - kMargin) {
        Fill();
    }
    void Fill() { std::ranges::fill(bytes_, kUntouched); }
    [[nodiscard]] uint8_t* Data() const { return own_.data(); }
    [[nodiscard]] bool IsAll(uint8_t byte) const { return Count(own_, byte) == own_.size(); }
    [[nodiscard]] bool IsIntactAround() const {
        const std::span<const uint8_t> all = bytes_;
        return Count(all.first(kMargin), kUntouched) == kMargin &&
               Count(all.last(kMargin), kUntouched) == kMargin;
    }

  private:
    static constexpr size_t kMargin = 256;
    static size_t Count(std::span<const uint8_t> bytes, uint8_t byte) {
        return static_cast<size_t>(std::ranges::count(bytes, byte));
    }

    std::vector<uint8_t> bytes_;
    std::span<uint8_t> own_;
};

constexpr DWORD kDocumented[] = {
    0, 2, 22, 23, 31, 87, 170, 1392, 1460, 4319, kNoReply, kBadReply, kUnexpectedReply};

/// The text of the first value of a reply, as a reader who knows nothing of this library finds it.
std::string ValueIn(const std::string& reply) {
    const size_t start = reply.find('=') + 1;
    return reply.substr(start, reply.find_first_of("&;?", start) - start);
}

int64_t NumberIn(std::string text, int64_t lowest, int64_t highest) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    int64_t number = 0;
    const char* const first = text.data() + (hex ? 2 : 0);
    const auto scan = std::from_chars(first, text.data() + text.size(), number, hex ? 16 : 10);
    if (scan.ec == std::errc::result_out_of_range) return text[0] == '-' ? lowest : highest;
    return std::clamp(number, lowest, highest);
}

template <typename Value>
Value Out(const Guarded& out) {
    Value value;
    std::memcpy(&value, out.Data(), sizeof(value));
    return value;
}

/// Whether a success delivered what the reply says.
bool IsRight(const catalogue::Row& row, const Guarded& out, const std::string& reply) {
    const std::string text = ValueIn(reply);
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    const auto number =
        static_cast<uint32_t>(hex ? NumberIn(text, 0, UINT32_MAX) : NumberIn(text, INT32_MIN, INT32_MAX));
    switch (row.readType) {
        case catalogue::Type::Bool:
            return *out.Data() ==
                   (std::string("TYOEtyoe").find(text.substr(0, 1)) < 8 && text != "OFF" && text.size() != 7);
        case catalogue::Type::U8:
        case catalogue::Type::S8:
            return *out.Data() == static_cast<uint8_t>(number) ||
                   (row.name.ends_with("-level") && *out.Data() == 100);
        case catalogue::Type::U16:
            return Out<uint16_t>(out) == static_cast<uint16_t>(number);
        case catalogue::Type::U32:
        case catalogue::Type::S32:
            return Out<uint32_t>(out) == number;
        case catalogue::Type::Address:
            return std::string_view(reply).substr(reply.find("#4=") + 3, 4) ==
                   std::string_view(reinterpret_cast<const char*>(out.Data()), 4);
        case catalogue::Type::Enum:
            return std::ranges::any_of(row.words, [&](const catalogue::EnumEntry& word) {
                std::string plain;
                opl::AppendEscaped(plain, text);
                return plain == word.name && word.value == Out<uint32_t>(out);
            });
        case catalogue::Type::Text: {
            const auto* const read = reinterpret_cast<const WCHAR*>(out.Data());
            std::string plain;
            opl::AppendEscaped(plain, text == "(null)" ? "" : text.substr(0, text.find('\0')));
            WCHAR expected[1024];
            const int length =
                MultiByteToWideChar(CP_ACP, 0, plain.data(), static_cast<int>(plain.size()), expected, 1024);
            return WideView(expected, static_cast<size_t>(length)).substr(0, row.MaxCharacters()) == read;
        }
    }
    return false;
}

class MalformedReplies : public InstalledPrinter {
  protected:
    MalformedReplies()
        : running_(CreateEventW(nullptr, TRUE, TRUE, TEXT("ZRIJ9900StatMonClass-01042005"))),
          // No status monitor that could be asked, so nobody waits for one.
          squatter_(CreateEventW(nullptr, TRUE, FALSE,
                                 TEXT("Global\\ZRIJ9900StatMonClass-01042005RemoteControlChannelCmd"))) {}
    ~MalformedReplies() override {
        CloseHandle(running_);
        CloseHandle(squatter_);
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
        for (size_t i = 0; i < std::min(all, most); ++i) {
            const size_t chosen = most < all ? random() % all : i;
            std::string wrong = reply;
            const size_t place = chosen / 256;
            // Of the 256 changes of a byte, the one that changes nothing stands for the end before it.
            const auto byte = static_cast<char>(chosen);
            const bool isShort = byte == reply[place];
            isShort ? wrong.resize(place) : static_cast<void>(wrong[place] = byte);
            Try(query, request, wrong, isShort);
            if (HasFatalFailure()) return;
        }
    }

    void TryExport(const QueryExport& query) {
        out_ = std::make_unique<Guarded>(query.outBytes);
        server_.TakeSeen();
        ASSERT_TRUE(query.call(out_->Data(), kTimeoutMs)) << query.name << " " << GetLastError();
        if (query.setting != nullptr) {
            const auto seen = server_.TakeSeen();
            ASSERT_TRUE(IsRight(*query.setting, *out_, seen.back().second)) << query.name;
            return TryRequests(query, seen);
        }
        TryRequests(query, server_.TakeSeen());
    }

    void TryRequests(const QueryExport& query, const Counterpart::Exchanges& seen) {
        constexpr size_t kLongMost = 100'000;
        const auto most = static_cast<size_t>(effort.Of(kLongMost, 200)) / seen.size() + 1;
        for (const auto& [request, reply] : seen) {
            if (request.starts_with("ZRTimeoutParam")) continue;
            TryAll(query, request, reply, most);
            if (HasFatalFailure()) return;
        }
    }

    HANDLE running_;
    HANDLE squatter_;
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
        for (const QueryExport& query : queries) {
            TryExport(query);
            if (HasFatalFailure()) return;
        }
    });
    std::printf("%zu functions, %ld malformed replies\n", queries.size(), tried_);
}

}  // namespace
