// What lies in a section, as both ends of a channel in this process read it. Replies, once framed, are tried
// by the robustness trials, with every function that asks for one.
#include <windows.h>

#include <cstring>
#include <memory>
#include <string>

#include "ipc/message_header.h"
#include "ipc/opl_channel.h"
#include "targets.h"

namespace fuzz {

namespace {

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
    const std::string_view message = bytes.substr(1, sizeof(kwt::MessageHeader) + kCapacity);
    static OPLChannel server;
    static OPLChannel client;
    static const bool opened = server.Open(kwt::ChannelRole::Server, TEXT("FuzzHeader"), kCapacity) &&
                               client.Open(kwt::ChannelRole::Client, TEXT("FuzzHeader"), kCapacity);
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

constexpr Target kTargets[] = {{"channel_header", ChannelHeader}};

}  // namespace

std::span<const Target> SectionTargets() {
    return kTargets;
}

}  // namespace fuzz
