#include "statusmon/server.h"

#include <fmt/format.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "ipc/late_reply.h"
#include "shared/process.h"
#include "statusmon/requests.h"

namespace statusmon {
namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kHeaderBytes = 8;
// An answer waits for the section's own lock alone, which this process shares with nobody.
constexpr uint32_t kSendTimeoutMs = 1000;

/// A message as it came; its own statement of its length is not believed.
struct Request {
    uint32_t code = 0;
    std::string printer;
};

std::string TextOf(const uint8_t* data, size_t bytes) {
    std::u16string text(bytes / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), data, text.size() * sizeof(char16_t));
    text.resize(std::min(text.find(u'\0'), text.size()));
    try {
        return std::filesystem::path(text).string();
    } catch (const std::exception&) {
        return "(a name that is not text)";
    }
}

Request ReadRequest(const uint8_t* message, size_t length) {
    Request request;
    uint32_t dataBytes = 0;
    std::memcpy(&request.code, message, sizeof(request.code));
    std::memcpy(&dataBytes, message + sizeof(request.code), sizeof(dataBytes));
    request.printer = TextOf(message + kHeaderBytes, std::min<size_t>(dataBytes, length - kHeaderBytes));
    return request;
}

}  // namespace

bool Server::Start() {
    lastRequest_ = Clock::now();
    return channel_.Open(ipc::ChannelRole::Server) && channel_.StartServerThread();
}

void Server::Stop() {
    {
        const std::lock_guard guard(stopLock_);
        stopping_ = true;
    }
    stopSignal_.notify_all();
    channel_.Close();
}

uint32_t Server::IdleMs() const {
    return static_cast<uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - lastRequest_.load()).count());
}

void Server::Serve(const void* data, size_t length) {
    LogEntry entry;
    entry.time = std::chrono::system_clock::now();
    entry.clientProcessId = channel_.LastClientProcessId();
    if (length < kHeaderBytes) {
        entry.meaning = "sends something that is no request";
        entry.outcome = "not answered";
        return log_.Write(entry);
    }
    lastRequest_ = Clock::now();
    const Request request = ReadRequest(static_cast<const uint8_t*>(data), length);
    const std::string number = fmt::format("{:08X}", request.code);
    entry.printer = request.printer;
    if (const RequestKind* const kind = FindRequestKind(request.code)) {
        const Behaviour& behaviour = settings_.Of(*kind);
        entry.letters = kind->letters;
        entry.meaning = kind->meaning;
        entry.outcome = Meet(*kind, behaviour);
        log_.Write(entry);
        if (behaviour.death != Death::None) tools::EndAbruptly();
        return;
    }
    entry.letters = number;
    entry.meaning = "is a request that nobody knows";
    entry.outcome = SendAnswer(false);
    log_.Write(entry);
}

const char* Server::Meet(const RequestKind& kind, const Behaviour& behaviour) {
    const Clock::time_point received = Clock::now();
    if (behaviour.delayMs > 0 && !WaitUnlessStopped(behaviour.delayMs))
        return "not answered: the end came first";
    if (behaviour.death == Death::BeforeAnswer) return "broken off before the answer, as told";
    if (behaviour.answer == Answer::None) return "not answered, as told";
    // An answer that comes too late would be taken for that of the client's next request.
    if (Clock::now() - received >= std::chrono::milliseconds(kind.patienceMs))
        return "not answered: the client has given up";
    return SendAnswer(behaviour.answer == Answer::Done);
}

const char* Server::SendAnswer(bool done) {
    const uint32_t value = done ? 1 : 0;
    const ipc::ReplySent sent = ipc::SendPastLateReply(
        channel_, [&] { return channel_.SendReply(value, kSendTimeoutMs); },
        [this](uint32_t milliseconds) { static_cast<void>(WaitUnlessStopped(milliseconds)); });
    if (sent == ipc::ReplySent::Never) return "the answer could not be sent";
    return done ? "done" : "refused";
}

bool Server::WaitUnlessStopped(uint32_t milliseconds) {
    std::unique_lock guard(stopLock_);
    return !stopSignal_.wait_for(guard, std::chrono::milliseconds(milliseconds), [&] { return stopping_; });
}

}  // namespace statusmon
