// Answers the library's requests on the product's remote-control channel.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

#include "ipc/remote_control_channel.h"
#include "statusmon/log.h"
#include "statusmon/settings.h"

namespace statusmon {

class Server final {
  public:
    /// Both outlive the server; the log is written by the server's thread alone between Start and Stop.
    Server(const Settings& settings, Log& log) : settings_(settings), log_(log), channel_(*this) {}
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    /// Stops first.
    ~Server() { Stop(); }

    /// Opens the channel and serves it on a thread of its own. False, with the last-error value, when it
    /// cannot be opened.
    [[nodiscard]] bool Start();
    /// Ends a wait or a delayed answer and returns when the thread has ended.
    void Stop();

    /// Milliseconds since the last request, or since Start.
    [[nodiscard]] uint32_t IdleMs() const;

  private:
    class Channel final : public ipc::RemoteControlChannel {
      public:
        explicit Channel(Server& server) : server_(server) {}
        void OnMessage(const void* data, size_t length) override { server_.Serve(data, length); }

      private:
        Server& server_;
    };

    void Serve(const void* data, size_t length);
    [[nodiscard]] const char* Meet(const RequestKind& kind, const Behaviour& behaviour);
    [[nodiscard]] const char* SendAnswer(bool done);
    [[nodiscard]] bool WaitUnlessStopped(uint32_t milliseconds);

    const Settings& settings_;
    Log& log_;
    Channel channel_;
    std::atomic<std::chrono::steady_clock::time_point> lastRequest_;
    std::mutex stopLock_;
    std::condition_variable stopSignal_;
    bool stopping_ = false;
};

}  // namespace statusmon
