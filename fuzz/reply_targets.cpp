// What the device answers and what lies in a section, as it reaches the operations behind the exports: one
// client and one server channel in this process.
#include <windows.h>

#include <cstring>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ipc/message_header.h"
#include "session/kestrel_sdk.h"
#include "session/status_block.h"
#include "settings/access_points.h"
#include "settings/address_book.h"
#include "settings/capabilities.h"
#include "settings/clock.h"
#include "settings/network_diagnostics.h"
#include "settings/setting_access.h"
#include "targets.h"

namespace fuzz {

namespace {

constexpr uint32_t kTimeoutMs = 2000;
constexpr const WCHAR* kChannel = TEXT("Fuzz");

/// Answers every request with the same bytes.
class Counterpart final : public ipc::OPLChannel {
  public:
    Counterpart() { Require(Open(ipc::ChannelRole::Server, kChannel) && StartServerThread(), "a server"); }
    void OnMessage(const void*, size_t) override {
        const std::lock_guard guard(lock_);
        Send(reply_.data(), static_cast<uint32_t>(reply_.size()), kTimeoutMs);
    }
    void SetReply(std::string_view reply) {
        const std::lock_guard guard(lock_);
        reply_ = reply;
    }

  private:
    std::mutex lock_;
    std::string reply_;
};

session::KestrelSDK& ClientAnsweredWith(std::string_view reply) {
    static auto* const server = new Counterpart;
    static auto* const client = [] {
        auto* const sdk = new session::KestrelSDK;
        Require(sdk->oplChannel.Open(ipc::ChannelRole::Client, kChannel), "a client");
        sdk->lastTimeoutSent = kTimeoutMs;
        return sdk;
    }();
    server->SetReply(reply);
    return *client;
}

/// An output with nothing behind it that it may touch.
template <typename Value>
class Output final {
  public:
    explicit Output(size_t count = 1) : count_(count), values_(new Value[count]) {
        std::memset(static_cast<void*>(values_.get()), 0xA5, count * sizeof(Value));
    }
    [[nodiscard]] Value* Get() { return values_.get(); }
    [[nodiscard]] bool IsCleared() const {
        return std::string_view(reinterpret_cast<const char*>(values_.get()), count_ * sizeof(Value))
                   .find_first_not_of('\0') == std::string_view::npos;
    }

  private:
    size_t count_;
    std::unique_ptr<Value[]> values_;
};

bool Judged(bool done) {
    Require(!done || GetLastError() == NO_ERROR, "a success leaves no error");
    return done;
}

template <auto read, typename Value>
void ReadOne(session::KestrelSDK& sdk, opl::Key key) {
    Output<Value> value;
    const bool done = Judged(read(sdk, {key, nullptr, 0}, value.Get(), kTimeoutMs));
    Require(done || (value.IsCleared() && GetLastError() != NO_ERROR), "a failure clears and tells why");
}

void ReadOneEnum(session::KestrelSDK& sdk) {
    Output<uint32_t> value;
    const bool done = Judged(settings::ReadEnum(sdk, {opl::Key::DisplayLanguage, catalogue::kLanguage, 0},
                                                value.Get(), kTimeoutMs));
    Require(done == (*value.Get() != 0xA5A5A5A5), "written on success only");
}

void ReadOneText(session::KestrelSDK& sdk) {
    constexpr size_t kCharacters = 8;
    Output<WCHAR> text(kCharacters);
    const bool done = Judged(settings::ReadText(
        sdk, {opl::Key::ServiceNumber, nullptr, kCharacters * sizeof(WCHAR)}, text.Get(), kTimeoutMs));
    Require(WideView(text.Get(), kCharacters).find(WCHAR{0}) != WideView::npos, "terminated");
    Require(done || *text.Get() == 0, "empty on failure");
}

void ReadOneAddress(session::KestrelSDK& sdk) {
    Output<uint8_t> address(4);
    const bool done =
        Judged(settings::ReadAddress(sdk, {opl::Key::AutoIPAddress, nullptr, 0}, address.Get(), kTimeoutMs));
    Require(done || address.IsCleared(), "cleared on failure");
}

// Chosen by the first byte.
constexpr void (*kReaders[])(session::KestrelSDK&) = {
    [](session::KestrelSDK& sdk) { ReadOne<settings::ReadBool, uint8_t>(sdk, opl::Key::SceneBalance); },
    [](session::KestrelSDK& sdk) { ReadOne<settings::ReadU8, uint8_t>(sdk, opl::Key::FaxRedials); },
    [](session::KestrelSDK& sdk) { ReadOne<settings::ReadPercent, uint8_t>(sdk, opl::Key::UpperTrayLevel); },
    [](session::KestrelSDK& sdk) { ReadOne<settings::ReadS8, int8_t>(sdk, opl::Key::CopyBrightness); },
    [](session::KestrelSDK& sdk) { ReadOne<settings::ReadU16, uint16_t>(sdk, opl::Key::CopySizeScale); },
    [](session::KestrelSDK& sdk) { ReadOne<settings::ReadU32, uint32_t>(sdk, opl::Key::WirelessSpeed); },
    [](session::KestrelSDK& sdk) { ReadOne<settings::ReadS32, uint32_t>(sdk, opl::Key::WirelessRSSIdBm); },
    ReadOneEnum,
    ReadOneText,
    ReadOneAddress,
    [](session::KestrelSDK& sdk) {
        settings::DeviceTime time;
        Judged(settings::GetDeviceTime(sdk, time, kTimeoutMs));
    },
    [](session::KestrelSDK& sdk) {
        Output<uint8_t> block(48);
        settings::GetCapabilities(sdk, block.Get(), 48);
    },
    [](session::KestrelSDK& sdk) {
        uint32_t version = 0;
        Judged(settings::GetCapRBNVer(sdk, version, kTimeoutMs));
    },
};

void TypedReplies(std::string_view bytes) {
    if (bytes.size() < 2) return;  // an empty message is none
    const size_t reader = static_cast<unsigned char>(bytes.front()) % std::size(kReaders);
    kReaders[reader](ClientAnsweredWith(bytes.substr(1)));
}

void AddressBook(std::string_view bytes) {
    if (bytes.empty()) return;
    Output<KestrelQuickDial> record;
    const bool done =
        Judged(settings::GetQuickDialButton(ClientAnsweredWith(bytes), 0, record.Get(), kTimeoutMs));
    const KestrelQuickDial& read = *record.Get();
    Require(read.name[std::size(read.name) - 1] == 0 && read.address[std::size(read.address) - 1] == 0,
            "terminated");
    Require(done || record.IsCleared() || read.addressType != 0 || read.name[0] != 0,
            "cleared before the first field");
}

void AccessPoints(std::string_view bytes) {
    if (bytes.empty()) return;
    Output<KestrelAccessPoint> records(KESTREL_MAX_ACCESS_POINTS);
    Judged(settings::GetAccessPoints(ClientAnsweredWith(bytes), records.Get(), kTimeoutMs));
    for (const KestrelAccessPoint& record : std::span(records.Get(), KESTREL_MAX_ACCESS_POINTS))
        Require(record.macAddress[std::size(record.macAddress) - 1] == 0 &&
                    record.ssid[std::size(record.ssid) - 1] == 0,
                "terminated");
    Output<KestrelHost> hosts(KESTREL_MAX_HOSTS);
    Judged(settings::GetMDNSHostList(ClientAnsweredWith(bytes), hosts.Get(), kTimeoutMs));
}

void Status(std::string_view bytes) {
    std::vector<uint8_t> sent;
    if (!opl::OPLParser::GetBinaryValue(bytes, sent)) sent.assign(bytes.begin(), bytes.end());
    sent.reserve(1);  // an empty block has an address too
    Output<DeviceStatusRecord> record;
    const session::StatusBlock block(sent);
    block.CopyTo(record.Get());
    Require(std::memcmp(record.Get(), sent.data(), std::min(sent.size(), sizeof(DeviceStatusRecord))) == 0,
            "the record is the beginning of the block");
    Require(block.ConnectionKind() == 0 || block.ConnectionKind() == 1, "a kind of connection");
    static_cast<void>(block.IsKnown());
}

/// A section as a process that keeps no rules leaves it.
class Scribbler final {
  public:
    explicit Scribbler(const WCHAR* name)
        : mapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 1, name)),
          view_(static_cast<uint8_t*>(MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, 0))),
          event_(CreateEventW(nullptr, FALSE, FALSE, (WideText(name) + TEXT("NotifyEvent")).c_str())) {}
    void Leave(std::string_view bytes, uint32_t clientProcessId) {
        std::memcpy(view_, bytes.data(), bytes.size());
        if (clientProcessId != 0) std::memcpy(view_, &clientProcessId, sizeof(clientProcessId));
        SetEvent(event_);
    }

  private:
    HANDLE mapping_;
    uint8_t* view_;
    HANDLE event_;
};

// The first byte chooses the size of the receiver's buffer; header and payload follow.
void ChannelHeader(std::string_view bytes) {
    constexpr uint32_t kCapacity = 64;
    if (bytes.empty()) return;
    const uint32_t size = static_cast<unsigned char>(bytes.front()) % 80;
    const std::string_view message = bytes.substr(1, sizeof(ipc::MessageHeader) + kCapacity);
    static ipc::OPLChannel server;
    static ipc::OPLChannel client;
    static const bool opened = server.Open(ipc::ChannelRole::Server, TEXT("FuzzHeader"), kCapacity) &&
                               client.Open(ipc::ChannelRole::Client, TEXT("FuzzHeader"), kCapacity);
    Require(opened, "a channel");
    static Scribbler command(TEXT("Global\\FuzzHeaderCmd"));
    static Scribbler response(TEXT("Global\\FuzzHeaderResp"));
    const std::unique_ptr<char[]> buffer(new char[size]);
    command.Leave(message, 0);
    Require(server.Receive(buffer.get(), size, 0) <= size, "never more than the buffer holds");
    // A foreign message holds a client for 50 ms.
    response.Leave(message, GetCurrentProcessId());
    Require(client.Receive(buffer.get(), size, 0) <= size, "never more than the buffer holds");
    response.Leave(message, 0);
    const std::string longer(kCapacity + 9, 'x');
    Require(server.SendTo(1, false, longer.data(), static_cast<uint32_t>(longer.size()), 0) <= kCapacity,
            "never more than the section holds");
    server.Cancel();
    client.Cancel();
}

constexpr Target kTargets[] = {
    {"typed_replies", TypedReplies}, {"address_book", AddressBook},     {"access_points", AccessPoints},
    {"status_block", Status},        {"channel_header", ChannelHeader},
};

}  // namespace

std::span<const Target> ReplyTargets() {
    return kTargets;
}

}  // namespace fuzz
