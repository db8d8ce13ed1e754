// What one thread knows of the printer that it selected, and the two transactions that every device operation
// is made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "ipc/opl_channel.h"
#include "ipc/remote_control_channel.h"
#include "kestrel/sdk_types.h"
#include "kwt/wide_text.h"
#include "opl/opl_builder.h"
#include "opl/opl_parser.h"

namespace session {

class RemainingTime;

/// `lastResponseNum` before any reply has been read.
inline constexpr uint32_t kNoResponseYet = 100000;

/// The longest printer and driver name that is kept, in characters without a terminator.
inline constexpr size_t kMaxPrinterName = MAX_PATH - 1;

/// One per thread, made on the thread's first call and destroyed when the thread ends; never used by another
/// thread, so nothing here is locked. Always on the heap: it holds two buffers of 64 KiB.
///
/// Its data are public because the operations on them are written in the rooms of their subjects (settings,
/// clock, ...) as functions that take a KestrelSDK&. Errors are reported through the thread's last-error
/// value. Virtual in its end alone, like the other classes of the package.
class KestrelSDK {
  public:
    /// Opens the channel to the status monitor; a failure shows at the first request to it.
    KestrelSDK();
    KestrelSDK(const KestrelSDK&) = delete;
    KestrelSDK& operator=(const KestrelSDK&) = delete;
    virtual ~KestrelSDK();

    /// Makes the named printer the one that the following requests reach; null or empty picks the last
    /// installed local printer with a driver of the product. The product configuration must be loaded.
    /// The first selection that succeeds also wakes the language monitor and pings the printer (up to 2 s).
    /// After success the last-error value is whatever the opening of the channel or the wake-up left.
    bool SelectPrinter(const WCHAR* name);

    /// One raw exchange: sends `requestLength` bytes and reads one reply within `timeoutMs` milliseconds.
    /// True when a reply arrived and its response number is a good one. A reply, good or bad, is copied to
    /// `replyBuffer`, cut to `replyBufferSize` bytes and not terminated, and `*replyLength` says how many
    /// bytes that were; both pointers may be null. A null `request` with a length is refused with 87.
    bool SendCmd(const void* request, uint32_t requestLength, void* replyBuffer, uint32_t replyBufferSize,
                 uint32_t* replyLength, uint32_t timeoutMs);

    /// Exchanges `request` and sets `reply` to the first complete message of a good reply, which lies in this
    /// object until its next query. False, with `reply` empty, when the exchange failed or held no complete
    /// message.
    bool Query(std::string_view request, std::string_view& reply, uint32_t timeoutMs);
    /// The same with the request that asks for a key, for several keys at once, for one field of an address
    /// book record, or with a word that stands for itself.
    bool Query(opl::Key key, std::string_view& reply, uint32_t timeoutMs);
    bool Query(std::initializer_list<opl::Key> keys, std::string_view& reply, uint32_t timeoutMs);
    bool Query(opl::RecordList list, uint32_t index, opl::RecordField field, std::string_view& reply,
               uint32_t timeoutMs);
    bool Query(opl::Word word, std::string_view& reply, uint32_t timeoutMs);

    /// An empty text to build a request in that sets something. It is this object's own, because it keeps its
    /// buffer: one request at a time.
    [[nodiscard]] std::string& NewRequest();

    /// Exchanges `request` and reports the verdict on the reply alone.
    bool SetWithAck(std::string_view request, uint32_t timeoutMs);

    /// Takes the printer for this thread; refused replies give SDK_ERROR_UNEXPECTED_REPLY.
    bool Lock(uint32_t timeoutMs);

    /// Gives the printer back, asking again until `timeoutMs` has passed; each attempt may take that long as
    /// well. This thread counts as unlocked afterwards, whatever the outcome.
    bool Unlock(uint32_t timeoutMs);

    /// Withdraws what the language monitor is doing; true when it gave a good answer.
    bool Cancel();

    /// Lets the language monitor answer from what it knows already, or not. False with the last-error value 0
    /// when it answers but does not comply.
    bool EnableCache(bool enable);

    /// Clears `record`, starts the status monitor if need be, and reads the status. A status that is not
    /// known yet is asked for again, for up to 14 s and more; in the end it is delivered as it is.
    bool GetStatus(DeviceStatusRecord* record);

    /// True when the status monitor answers. It is not started.
    bool PingStatusMonitor();
    /// Start the status monitor if need be and let it open a window for the selected printer; 31 when it
    /// refuses.
    bool ShowStatusMonitor();
    bool ShowMaintenance();
    /// The same for the window that belongs to no printer; the status monitor is not started.
    bool ShowAboutBox();

    /// Asks the printer to order supplies and, when it cannot be asked, the status monitor; 31 when the
    /// printer refuses. The second way makes the connection count as USB until the next selection.
    bool OrderSupplies();

    /// Sends the selected printer's name to the status monitor; the reply is the caller's to receive.
    bool SendPrinterName(ipc::RemoteCode code, uint32_t timeoutMs);

    /// Keeps a reply that could not be understood for GetLastBadResponse, and sets the last-error value.
    /// Always false, the result of the operation that gives up.
    bool RejectReply(std::string_view reply, uint32_t error);

    /// Keeps the response number of a reply in `lastResponseNum`. A reply without one is rejected with
    /// SDK_ERROR_BAD_REPLY: false.
    bool TakeResponseNumber(std::string_view reply);

    opl::OPLBuilder builder;
    opl::OPLParser parser;
    ipc::OPLChannel oplChannel;
    WideText printerName;
    WideText driverName;
    ipc::RemoteControlChannel remoteChannel;
    uint32_t lastTimeoutSent = 0;  // milliseconds; what the language monitor was told last
    std::string lastBadResponse;
    uint32_t lastResponseNum = kNoResponseYet;
    bool wakeUpPending = true;
    int32_t connectionKind = -1;  // 0 a printer on a USB port, 1 any other, negative not known
    bool printerLocked = false;   // this thread holds the printer's lock

  private:
    /// The exchange and the verdict on its reply: 0 for a good reply, else the code of the failure. `reply`
    /// has room for ipc::kMaxOplMessage bytes; `received` is not 0 whenever a reply was read.
    [[nodiscard]] uint32_t Transact(const void* request, uint32_t requestLength, char* reply,
                                    uint32_t& received, uint32_t timeoutMs);
    /// The same, kept on the record.
    [[nodiscard]] uint32_t TransactOnRecord(const void* request, uint32_t requestLength, char* reply,
                                            uint32_t& received, uint32_t timeoutMs);
    [[nodiscard]] uint32_t Exchange(const void* request, uint32_t requestLength, char* reply,
                                    uint32_t& received, uint32_t timeoutMs);
    [[nodiscard]] uint32_t AnnounceTimeout(uint32_t timeoutMs, const RemainingTime& time);
    [[nodiscard]] uint32_t Judge(std::string_view reply);

    /// Unlock but for the record of the lock.
    [[nodiscard]] bool AskToUnlock(uint32_t timeoutMs);

    /// Lets the status monitor look at the printer before this library does; nothing depends on it.
    void RequestStatusUpdate();
    [[nodiscard]] bool QueryStatus(DeviceStatusRecord* record);

    [[nodiscard]] bool ShowOnStartedMonitor(ipc::RemoteCode window);
    /// The outcome of a request to show a window that was sent or not.
    [[nodiscard]] bool JudgeShown(bool sent);
    [[nodiscard]] bool OrderThroughStatusMonitor();

    /// The steps of a selection; `error` receives the code to report, after success too.
    [[nodiscard]] bool AcceptPrinter(const WideText& name, WideText& port, uint32_t& error);
    [[nodiscard]] bool OpenCommandChannel(const WideText& port, uint32_t& error);
    [[nodiscard]] bool Ping();

    // Of the exchanges; they keep their buffers, so that an exchange allocates nothing.
    std::string request_;
    std::string reply_;
    std::string announcement_;
};

}  // namespace session
