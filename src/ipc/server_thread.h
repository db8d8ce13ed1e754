// The dispatch thread of a server channel.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

namespace ipc {

class IPCChannel;

/// Receives requests into a buffer of its own and hands each to the channel's OnMessage, until stopped.
class ServerThread final {
  public:
    ServerThread(IPCChannel& channel, uint32_t maxMessage);
    ServerThread(const ServerThread&) = delete;
    ServerThread& operator=(const ServerThread&) = delete;
    ~ServerThread() = default;

    /// Once, when the channel knows this object, and `Stop` before it forgets it: the thread asks it who
    /// receives.
    void Start();
    /// Asks the thread to stop, cancels its wait and waits for its end.
    void Stop();

    [[nodiscard]] bool IsCurrentThread() const {
        return threadId_.load(std::memory_order_relaxed) == OwnId();
    }

  private:
    static uint32_t OwnId();
    void Run();

    IPCChannel& channel_;
    const uint32_t maxMessage_;
    std::unique_ptr<uint8_t[]> buffer_;
    std::atomic<bool> stop_{false};
    std::atomic<uint32_t> threadId_{0};
    std::thread thread_;
};

}  // namespace ipc
