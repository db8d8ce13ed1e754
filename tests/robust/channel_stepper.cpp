// A client or a server that ends, as by SIGKILL, at a named place of the channel's code. A client's work is
// one sequence: open, three exchanges, one that is cancelled, close. A server's: open, serve twenty requests,
// cancel, serve twenty more, close.
//
//   channel_stepper client|server NAME               prints "<hits> <place>" for each place on its way
//   channel_stepper client|server NAME HIT PLACE     ends at the hit of the place
//   channel_stepper server NAME -1 never             serves until it is killed
#include <signal.h>
#include <unistd.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <map>
#include <mutex>
#include <string>

#include "ipc/late_reply.h"
#include "ipc/opl_channel.h"
#include "kwt/step.h"

namespace {

constexpr uint32_t kTimeoutMs = 250;

std::mutex hitsLock;
std::map<std::string, int> hits;
std::string doomedPlace;
std::atomic<int> doomedHit{0};

class Echo final : public ipc::OPLChannel {
  public:
    void OnMessage(const void* data, size_t length) override {
        const auto bytes = static_cast<uint32_t>(length);
        const uint64_t start = GetTickCount64();
        // A reply has no number: one that comes late is taken for that to the next request.
        const auto send = [&] {
            return GetTickCount64() - start < kTimeoutMs / 2 && Send(data, bytes, kTimeoutMs) != 0;
        };
        static_cast<void>(ipc::SendPastLateReply(*this, send, Sleep));
        ++served;
    }
    std::atomic<int> served{0};
};

int RunClient(const WideText& name) {
    ipc::OPLChannel channel;
    if (!channel.Open(ipc::ChannelRole::Client, name.c_str())) return 1;
    std::array<char, 64> reply;
    for (int i = 0; i < 3; ++i)
        if (channel.Send("hello", 5, kTimeoutMs) != 0)
            channel.Receive(reply.data(), reply.size(), kTimeoutMs);
    channel.Send("x", 1, kTimeoutMs);
    channel.Cancel();
    channel.Close();
    return 0;
}

int RunServer(const WideText& name) {
    Echo channel;
    if (!channel.Open(ipc::ChannelRole::Server, name.c_str())) return 1;
    channel.StartServerThread();
    std::cout << "ready" << std::endl;
    const bool isToStay = doomedHit == -1;
    const auto serve = [&](int count) {
        for (int i = 0; (i < 1000 || isToStay) && (channel.served < count || isToStay); ++i)
            Sleep(2);
    };
    serve(20);
    channel.Cancel();
    serve(40);
    channel.Close();
    return 0;
}

}  // namespace

void kwt::Step(const char* place) {
    if (place == doomedPlace && --doomedHit == 0) kill(getpid(), SIGKILL);
    if (!doomedPlace.empty()) return;
    const std::lock_guard guard(hitsLock);
    ++hits[place];
}

int main(int argc, char** argv) {
    if (argc != 3 && argc != 5) return 2;
    const std::string name = argv[2];
    if (argc == 5) {
        doomedHit = std::atoi(argv[3]);
        doomedPlace = argv[4];
    }
    const auto run = std::string(argv[1]) == "client" ? RunClient : RunServer;
    const int result = run(WideText(name.begin(), name.end()));
    for (const auto& [place, count] : hits)
        std::cout << count << ' ' << place << '\n';
    return result;
}
