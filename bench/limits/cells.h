// Words in shared memory through which the limits talk: each client has a pair of its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>

constexpr uint32_t kLargeMessage = 0x100FF;

struct Cells {
    alignas(64) std::atomic<uint32_t> request;
    alignas(64) std::atomic<uint32_t> reply;
};

struct SmallCells {
    static constexpr unsigned kClients = 4;
    Cells cells[kClients];
};

/// With as many bytes each way as the longest message of the command channel has.
struct LargeCells {
    static constexpr unsigned kClients = 1;
    Cells cells[kClients];
    alignas(64) uint8_t requestBytes[kLargeMessage];
    alignas(64) uint8_t replyBytes[kLargeMessage];
};

// A message is copied as often as any two processes must that own their messages: in and out, each way.

class NoPayload {
  public:
    using Shared = SmallCells;
    void Send(Shared&) {}
    void Answer(Shared&) {}
    void Receive(Shared&) {}
    [[nodiscard]] bool IsRight() const { return true; }
};

class LargePayload {
  public:
    using Shared = LargeCells;
    LargePayload() { std::memset(own_, 0x5A, sizeof(own_)); }
    void Send(Shared& shared) { std::memcpy(shared.requestBytes, own_, sizeof(own_)); }
    void Answer(Shared& shared) {
        std::memcpy(received_, shared.requestBytes, sizeof(received_));
        std::memcpy(shared.replyBytes, own_, sizeof(own_));
    }
    void Receive(Shared& shared) { std::memcpy(received_, shared.replyBytes, sizeof(received_)); }
    [[nodiscard]] bool IsRight() const { return std::memcmp(received_, own_, sizeof(own_)) == 0; }

  private:
    uint8_t own_[kLargeMessage];
    uint8_t received_[kLargeMessage]{};
};
