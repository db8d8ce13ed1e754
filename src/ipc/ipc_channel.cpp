// One channel, both roles. What lies in a section was written by another process and is not trusted: a header
// field is read once, and every decision is made on that copy.
//
// Order of the locks of a client: the send lock, the transaction mutex (from the send to the end of the
// receive or to a cancel), a section's own lock.
#include "ipc/ipc_channel.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "ipc/late_reply.h"
#include "ipc/process_list.h"
#include "ipc/server_thread.h"
#include "kwt/scoped_locks.h"
#include "kwt/step.h"

namespace ipc {

namespace {

using kwt::AtUnlock;
using kwt::SectionAccess;
using kwt::SectionLock;
using kwt::Step;

constexpr uint32_t kServerSettleMs = 100;  // before a server clears stale signals
constexpr uint32_t kCancelLockTimeoutMs = 5000;
constexpr uint32_t kUnansweredSend = 776;  // the thread has posted a request and not received its reply

// Characters that object names do not take, and the letters in their place.
struct Replacement {
    WCHAR from;
    WCHAR to;
};
constexpr Replacement kReplacements[] = {
    {TEXT('*'), TEXT('A')}, {TEXT('/'), TEXT('F')}, {TEXT(':'), TEXT('C')},  {TEXT('<'), TEXT('L')},
    {TEXT('>'), TEXT('G')}, {TEXT('?'), TEXT('Q')}, {TEXT('\\'), TEXT('B')}, {TEXT('|'), TEXT('P')},
};

WideText Sanitized(const WCHAR* name) {
    WideText text = name != nullptr ? name : WideText();
    for (WCHAR& c : text)
        for (const Replacement& replacement : kReplacements)
            if (c == replacement.from) {
                c = replacement.to;
                break;
            }
    return text;
}

std::atomic_ref<uint32_t> LengthOf(uint8_t* block) {
    return std::atomic_ref(*reinterpret_cast<uint32_t*>(block + offsetof(MessageHeader, length)));
}

// The length first: what was written before it is then seen as well.
MessageHeader ReadHeader(uint8_t* block) {
    const uint32_t length = LengthOf(block).load(std::memory_order_acquire);
    MessageHeader header;
    std::memcpy(&header, block, sizeof(header));
    header.length = length;
    return header;
}

void ClearLength(uint8_t* block) {
    LengthOf(block).store(0, std::memory_order_relaxed);
}

uint32_t TimeoutAs1460(uint32_t error) {
    return error == WAIT_TIMEOUT ? ERROR_TIMEOUT : error;
}

// Another process's message that nobody has taken yet and somebody still may.
bool IsPendingForAnother(const MessageHeader& header, uint32_t target) {
    return header.length > 0 && header.clientProcessId != target && header.aborted == 0 &&
           header.broadcast == 0 && IsProcessRunning(header.clientProcessId);
}

}  // namespace

IPCChannel::IPCChannel() = default;

IPCChannel::~IPCChannel() {
    Close();
}

void IPCChannel::OnMessage(const void*, size_t) {}

bool IPCChannel::CreateObjects(const WideText& name, uint32_t sectionSize, uint32_t& commandError,
                               uint32_t& responseError) {
    if (!commandSection_.Create((name + TEXT("Cmd")).c_str(), sectionSize, true, true)) return false;
    commandError = GetLastError();
    Step("open: command section");
    if (!responseSection_.Create((name + TEXT("Resp")).c_str(), sectionSize, true, true)) return false;
    responseError = GetLastError();
    Step("open: response section");
    return transactionMutex_.Create((name + TEXT("TransactionMutex")).c_str(), true) &&
           serverIdleEvent_.Create((name + TEXT("ServerIdleEvent")).c_str(), true);
}

bool IPCChannel::OpenChannel(ChannelRole role, const WCHAR* channelName, uint32_t maxMessage) {
    SetLastError(NO_ERROR);
    Close();
    Step("open: begin");
    const WideText name = Sanitized(channelName);
    uint32_t commandError = NO_ERROR;
    uint32_t responseError = NO_ERROR;
    if (!CreateObjects(name, maxMessage + static_cast<uint32_t>(sizeof(MessageHeader)), commandError,
                       responseError)) {
        const DWORD error = GetLastError();
        commandSection_.Close();
        responseSection_.Close();
        ReturnToClosedState();
        SetLastError(error);
        return false;
    }
    const DWORD error = GetLastError();
    Step("open: all objects");
    open_ = true;
    name_ = name;
    maxMessage_ = maxMessage;
    role_ = role;
    if (commandError == NO_ERROR) ClearHeader(commandSection_);
    Step("open: command header cleared");
    if (responseError == NO_ERROR) ClearHeader(responseSection_);
    Step("open: response header cleared");
    if (role == ChannelRole::Server) {
        Sleep(kServerSettleMs);
        Step("open: settled");
        commandSection_.GetNotifyEvent().Reset();
        Step("open: command signal reset");
        responseSection_.GetNotifyEvent().Reset();
    }
    Step("open: end");
    SetLastError(error);
    return true;
}

void IPCChannel::ClearHeader(kwt::SharedMemory& section) {
    const SectionLock lock(section, SectionAccess::Write, AtUnlock::Silent, INFINITE);
    if (lock.Block() != nullptr) std::memset(lock.Block(), 0, sizeof(MessageHeader));
}

void IPCChannel::ReturnToClosedState() {
    open_ = false;
    name_.clear();
    maxMessage_ = 0;
    lastClientProcessId_ = 0;
    role_ = ChannelRole::Server;
}

void IPCChannel::Close() {
    SetLastError(NO_ERROR);
    if (!open_) return;
    Step("close: begin");
    StopServerThread();
    Step("close: thread stopped");
    Cancel();
    Step("close: cancelled");
    transactionMutex_.Close();
    Step("close: transaction closed");
    commandSection_.Close();
    Step("close: command section closed");
    responseSection_.Close();
    Step("close: response section closed");
    ReturnToClosedState();
}

uint32_t IPCChannel::TakeTransaction(uint32_t timeoutMs) {
    if (transactionMutex_.IsLockedByCurrentThread()) return kUnansweredSend;
    Step("transaction: before");
    const kwt::WaitResult taken = transactionMutex_.Lock(timeoutMs);
    Step("transaction: taken");
    if (taken == kwt::WaitResult::Abandoned) return ERROR_ABANDONED_WAIT_0;
    if (taken == kwt::WaitResult::TimedOut) return ERROR_TIMEOUT;
    if (taken != kwt::WaitResult::Signaled) return ERROR_GEN_FAILURE;
    return serverIdleEvent_.Wait(timeoutMs) == kwt::WaitResult::Signaled ? NO_ERROR : ERROR_TIMEOUT;
}

uint32_t IPCChannel::Post(const void* data, uint32_t length, const MessageHeader& header,
                          uint32_t timeoutMs) {
    if (!open_) {
        SetLastError(ERROR_OPEN_FAILED);
        return 0;
    }
    Step("send: begin");
    const Outcome outcome = PostInTurn(data, length, header, timeoutMs);
    Step("send: end");
    SetLastError(outcome.error);
    return outcome.bytes;
}

IPCChannel::Outcome IPCChannel::PostInTurn(const void* data, uint32_t length, const MessageHeader& header,
                                           uint32_t timeoutMs) {
    const kwt::MutexLock lock(sendLock_, timeoutMs);
    Step("send: locked");
    if (lock.Result() == kwt::WaitResult::TimedOut) return {0, ERROR_TIMEOUT};
    if (lock.Result() != kwt::WaitResult::Signaled) return {0, ERROR_GEN_FAILURE};
    Outcome outcome;
    if (IsClient()) outcome.error = TakeTransaction(timeoutMs);
    Step("send: admitted");
    if (outcome.error == NO_ERROR) outcome = Write(data, length, header, timeoutMs);
    // After a refused second send this gives up the first one's transaction.
    if (IsClient() && outcome.bytes == 0 && length > 0) transactionMutex_.Unlock();
    Step("send: written");
    return outcome;
}

uint32_t IPCChannel::Send(const void* data, uint32_t length, uint32_t timeoutMs) {
    MessageHeader header{};
    header.clientProcessId = IsClient() ? GetCurrentProcessId() : lastClientProcessId_;
    return Post(data, length, header, timeoutMs);
}

uint32_t IPCChannel::SendTo(uint32_t clientProcessId, bool aborted, const void* data, uint32_t length,
                            uint32_t timeoutMs) {
    if (open_ && !IsServer()) return 0;
    MessageHeader header{};
    header.clientProcessId = clientProcessId;
    header.aborted = aborted ? 1 : 0;
    return Post(data, length, header, timeoutMs);
}

uint32_t IPCChannel::Broadcast(const void* data, uint32_t length, uint32_t timeoutMs) {
    return SendTo(0, false, data, length, timeoutMs);
}

IPCChannel::Outcome IPCChannel::Write(const void* data, uint32_t length, MessageHeader header,
                                      uint32_t timeoutMs) {
    const SectionLock lock(IsClient() ? commandSection_ : responseSection_, SectionAccess::Write,
                           AtUnlock::Notify, timeoutMs);
    uint8_t* const block = lock.Block();
    if (block == nullptr) return {0, TimeoutAs1460(GetLastError())};
    Step("write: section locked");
    if (IsPendingForAnother(ReadHeader(block), header.clientProcessId)) return {0, ERROR_SHARING_VIOLATION};
    Step("write: section free");
    commandSection_.GetNotifyEvent().Reset();
    Step("write: command signal reset");
    responseSection_.GetNotifyEvent().Reset();
    Step("write: response signal reset");
    // A section's lock keeps no other process out: a reader that an earlier message has woken may look at any
    // moment. What says that a message is there comes last.
    std::memset(block, 0, sizeof(header));
    Step("write: header cleared");
    const uint32_t bytes = std::min(length, maxMessage_);
    if (bytes != 0) std::memcpy(block + sizeof(header), data, bytes);
    Step("write: payload");
    header.broadcast = IsServer() && header.clientProcessId == 0 ? 1 : 0;
    std::memcpy(block, &header, sizeof(header));
    Step("write: header");
    LengthOf(block).store(bytes, std::memory_order_release);
    Step("write: length");
    return {bytes, NO_ERROR};
}

uint32_t IPCChannel::Receive(void* buffer, uint32_t size, uint32_t timeoutMs) {
    if (!open_) {
        SetLastError(ERROR_OPEN_FAILED);
        return 0;
    }
    if (serverThread_ != nullptr && !serverThread_->IsCurrentThread()) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return 0;
    }
    kwt::SharedMemory& section = IsClient() ? responseSection_ : commandSection_;
    Step("receive: begin");
    if (IsServer()) serverIdleEvent_.Set();
    Step("receive: announced");
    const DWORD start = IsClient() ? GetTickCount() : 0;  // a server takes what comes
    std::optional<Outcome> outcome = ReadOnce(section, buffer, size, timeoutMs);
    while (!outcome) {
        const DWORD now = GetTickCount();
        const bool isOver = now < start || now - start >= timeoutMs;
        outcome = isOver ? Outcome{0, ERROR_TIMEOUT} : ReadOnce(section, buffer, size, timeoutMs);
    }
    Step("receive: read");
    if (IsClient())
        transactionMutex_.Unlock();
    else
        serverIdleEvent_.Reset();
    Step("receive: end");
    SetLastError(outcome->error);
    return outcome->bytes;
}

std::optional<IPCChannel::Outcome> IPCChannel::ReadOnce(kwt::SharedMemory& section, void* buffer,
                                                        uint32_t size, uint32_t timeoutMs) {
    if (section.WaitForNotify(timeoutMs) != kwt::WaitResult::Signaled)
        return Outcome{0, TimeoutAs1460(GetLastError())};
    Step("read: notified");
    const SectionLock lock(section, SectionAccess::Read, AtUnlock::Notify, timeoutMs);
    uint8_t* const block = lock.Block();
    if (block == nullptr) return Outcome{0, TimeoutAs1460(GetLastError())};
    Step("read: section locked");
    const MessageHeader header = ReadHeader(block);
    if (IsClient() && header.clientProcessId != GetCurrentProcessId()) {
        // Left where it is. The end of the lock takes the signal back, so that it reaches only a reader that
        // waits during the pause.
        section.GetNotifyEvent().Set();
        Step("read: foreign message");
        Sleep(kForeignPauseMs);
        return std::nullopt;
    }
    const uint32_t bytes = std::min({header.length, size, maxMessage_});
    if (IsServer() && header.clientProcessId != 0) lastClientProcessId_ = header.clientProcessId;
    if (bytes != 0) std::memcpy(buffer, block + sizeof(header), bytes);
    Step("read: copied");
    ClearLength(block);
    Step("read: length cleared");
    return Outcome{bytes, header.aborted != 0 ? DWORD{ERROR_OPERATION_ABORTED} : DWORD{NO_ERROR}};
}

void IPCChannel::Cancel() {
    SetLastError(NO_ERROR);
    if (!open_)
        SetLastError(ERROR_OPEN_FAILED);
    else if (IsClient())
        CancelAsClient();
    else
        CancelAsServer();
}

void IPCChannel::EndReceive() {
    if (open_) (IsClient() ? responseSection_ : commandSection_).Cancel();
}

void IPCChannel::CancelAsClient() {
    if (transactionMutex_.IsLocked() && transactionMutex_.GetOwnerProcessId() == GetCurrentProcessId())
        responseSection_.Cancel();
    Step("cancel: own wait ended");
    WithdrawMessage(commandSection_);
    Step("cancel: request withdrawn");
    if (transactionMutex_.IsLocked()) transactionMutex_.Unlock();
    Step("cancel: transaction given up");
}

void IPCChannel::CancelAsServer() {
    commandSection_.Cancel();
    Step("cancel: own wait ended");
    serverIdleEvent_.Reset();
    Step("cancel: announcement withdrawn");
    WithdrawMessage(responseSection_);
    Step("cancel: reply withdrawn");
    responseSection_.WaitForNotify(0);
    Step("cancel: signal taken");
}

void IPCChannel::WithdrawMessage(kwt::SharedMemory& section) {
    const SectionLock lock(section, SectionAccess::Write, AtUnlock::Silent, kCancelLockTimeoutMs);
    if (lock.Block() == nullptr) return;
    Step("withdraw: section locked");
    ClearLength(lock.Block());
}

bool IPCChannel::StartServerThread() {
    if (!open_ || !IsServer()) return false;
    StopServerThread();
    serverThread_ = std::make_unique<ServerThread>(*this, maxMessage_);
    try {
        serverThread_->Start();
    } catch (...) {
        serverThread_.reset();  // without a thread anybody may receive
        throw;
    }
    return true;
}

void IPCChannel::StopServerThread() {
    if (serverThread_ == nullptr) return;
    serverThread_->Stop();
    serverThread_.reset();
}

}  // namespace ipc
