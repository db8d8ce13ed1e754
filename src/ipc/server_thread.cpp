// One loop around Receive.
#include "ipc/server_thread.h"

#include <windows.h>

#include "ipc/ipc_channel.h"

namespace ipc {

ServerThread::ServerThread(IPCChannel& channel, uint32_t maxMessage)
    : channel_(channel),
      maxMessage_(maxMessage),
      buffer_(std::make_unique_for_overwrite<uint8_t[]>(maxMessage)) {}

void ServerThread::Start() {
    thread_ = std::thread([this] { Run(); });
}

void ServerThread::Stop() {
    stop_.store(true, std::memory_order_release);
    channel_.Cancel();
    if (thread_.joinable()) thread_.join();
}

uint32_t ServerThread::OwnId() {
    return GetCurrentThreadId();
}

void ServerThread::Run() {
    threadId_.store(OwnId(), std::memory_order_relaxed);
    while (!stop_.load(std::memory_order_acquire)) {
        const uint32_t bytes = channel_.Receive(buffer_.get(), maxMessage_, INFINITE);
        if (bytes != 0 && !stop_.load(std::memory_order_acquire)) channel_.OnMessage(buffer_.get(), bytes);
    }
}

}  // namespace ipc
