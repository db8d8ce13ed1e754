// One request and one reply at a time between processes, over two shared-memory sections.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "ipc/message_header.h"
#include "kwt/shared_memory.h"
#include "kwt/wide_text.h"
#include "kwt/win_event.h"
#include "kwt/win_mutex.h"

namespace ipc {

enum class ChannelRole : uint32_t { Client = 0, Server = 1 };

class ServerThread;

/// Many clients may open one channel name; a transaction mutex shared by all of them admits one exchange at a
/// time, and every message carries the process id of its client. A client posts nothing before a server has
/// announced that it is idle.
///
/// Time-outs are milliseconds, 0xFFFFFFFF without limit; each wait inside an operation gets the whole
/// time-out, so that one call can take up to twice as long. Every operation reports through the last-error
/// value:
///   110   the channel is not open
///   1460  no server was idle, or no reply came, in time
///   776   the calling thread posted a request and never received its reply
///   735   the previous client died in the middle of its exchange; nothing was posted, the next call works
///   32    the section holds an unread message of another living process
///   995   cancelled, or the message was marked as aborted (its payload is delivered)
///
/// A channel object belongs to one thread, except `Cancel` and `EndReceive`, which any thread may call.
class IPCChannel {
  public:
    IPCChannel();
    IPCChannel(const IPCChannel&) = delete;
    IPCChannel& operator=(const IPCChannel&) = delete;
    virtual ~IPCChannel();  // the classes of the channel kinds, and those of the servers, derive from it

    /// Called by the server's dispatch thread for every request; does nothing here.
    virtual void OnMessage(const void* data, size_t length);

    void Close();
    [[nodiscard]] bool IsOpen() const { return open_; }
    /// The name as opened: characters that object names do not take are replaced by letters.
    [[nodiscard]] WideText GetName() const { return name_; }
    [[nodiscard]] bool IsClient() const { return role_ == ChannelRole::Client; }
    [[nodiscard]] bool IsServer() const { return role_ == ChannelRole::Server; }

    /// Posts one message and returns the bytes written, at most the capacity of the channel. A client keeps
    /// the transaction until its `Receive` or `Cancel`.
    uint32_t Send(const void* data, uint32_t length, uint32_t timeoutMs);
    /// Takes one message and returns the bytes copied to `buffer`. A server with a dispatch thread receives
    /// on that thread alone; others are refused with 32.
    uint32_t Receive(void* buffer, uint32_t size, uint32_t timeoutMs);
    /// A client withdraws an unread request and gives up its transaction; a server takes back its reply and
    /// its announcement. Either ends a `Receive` of its role that waits, or the next one if none does.
    void Cancel();
    /// Ends a `Receive` of this role that waits, or the next one, with 995; nothing is withdrawn, and a
    /// message that lies there is received first.
    void EndReceive();

    /// Server only: as `Send`, but to a client of the caller's choice, and marked as aborted if asked.
    uint32_t SendTo(uint32_t clientProcessId, bool aborted, const void* data, uint32_t length,
                    uint32_t timeoutMs);
    /// Server only: a message to no client in particular.
    uint32_t Broadcast(const void* data, uint32_t length, uint32_t timeoutMs);
    /// Server only: serves requests on a thread of its own through `OnMessage` until `Close`.
    bool StartServerThread();

    /// Server only: the process id of the client whose request was received last.
    [[nodiscard]] uint32_t LastClientProcessId() const { return lastClientProcessId_; }

  protected:
    /// True when all eight objects of the channel are in place. `maxMessage` is the payload capacity of each
    /// section in bytes.
    bool OpenChannel(ChannelRole role, const WCHAR* channelName, uint32_t maxMessage);

  private:
    friend class ServerThread;

    struct Outcome {
        uint32_t bytes = 0;
        uint32_t error = 0;
    };

    bool CreateObjects(const WideText& name, uint32_t sectionSize, uint32_t& commandError,
                       uint32_t& responseError);
    static void ClearHeader(kwt::SharedMemory& section);
    static void WithdrawMessage(kwt::SharedMemory& section);
    void ReturnToClosedState();
    void StopServerThread();
    [[nodiscard]] uint32_t TakeTransaction(uint32_t timeoutMs);
    uint32_t Post(const void* data, uint32_t length, const MessageHeader& header, uint32_t timeoutMs);
    [[nodiscard]] Outcome PostInTurn(const void* data, uint32_t length, const MessageHeader& header,
                                     uint32_t timeoutMs);
    [[nodiscard]] Outcome Write(const void* data, uint32_t length, MessageHeader header, uint32_t timeoutMs);
    /// Nothing when the message that lies there is for another client.
    [[nodiscard]] std::optional<Outcome> ReadOnce(kwt::SharedMemory& section, void* buffer, uint32_t size,
                                                  uint32_t timeoutMs);
    void CancelAsClient();
    void CancelAsServer();

    bool open_ = false;
    WideText name_;
    ChannelRole role_ = ChannelRole::Server;
    uint32_t maxMessage_ = 0;
    uint32_t lastClientProcessId_ = 0;
    kwt::WinMutex sendLock_;
    kwt::WinMutex transactionMutex_;  // outlives the scope that takes it: held until the reply or a cancel
    kwt::SharedMemory commandSection_;
    kwt::SharedMemory responseSection_;
    std::unique_ptr<ServerThread> serverThread_;
    kwt::WinEvent serverIdleEvent_;
};

}  // namespace ipc

namespace kwt {

/// To the other modules of the package the channel is part of the platform layer.
using ipc::IPCChannel;

}  // namespace kwt
