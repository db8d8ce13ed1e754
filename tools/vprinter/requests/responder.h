// What a printer answers: one reply for each request, however many commands that holds.
//
//   good            0000,Key=value;    several commands: 0000,Key=value&Key2=value2;
//   lists           0101,Key[0].Field=value&Key[0].Field2=value2;
//   special words   number of the word's own, such as 0096,Maintenance=001;
//   refused         3400,...;  a command that the printer does not know or cannot carry out
//                   3450,...;  a value that it does not take
//                   1999,...;  another client has locked the printer, or its firmware is being replaced
//                   100003,...;  the language monitor does not reach the device
//
// Commands are carried out in their order; the first one that is refused ends the request and its refusal is
// the reply, while what the commands before it changed stays changed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vprinter/device/live_device.h"
#include "vprinter/device/model.h"
#include "vprinter/device/surroundings.h"
#include "vprinter/requests/request_reader.h"
#include "vprinter/requests/session_table.h"

namespace vprinter {

/// How the language monitor fares with the device, beside what `device.online` says.
enum class Reach : uint8_t { Reached, Busy, NotReached };

/// Belongs to the printer's serving thread.
class Responder final {
  public:
    explicit Responder(DeviceModel& model, Surroundings surroundings = RealSurroundings());

    /// Makes the printer the one that `origin` and its model's values were taken from.
    void Adopt(Origin origin);

    /// The reply, valid until the next call; empty when the request is not answered. A query of one setting
    /// allocates nothing.
    [[nodiscard]] std::string_view Answer(std::string_view request, uint32_t clientProcessId,
                                          Reach reach = Reach::Reached);
    /// Answers as always, and keeps nothing of what was set.
    [[nodiscard]] std::string_view AnswerInVain(std::string_view request, uint32_t clientProcessId);

    /// From now on the printer has a value of its own for this key.
    void ForgetFixedReply(std::string_view key);
    /// Nobody holds the lock any more.
    void ForgetLock() { lockHolder_ = 0; }
    /// The printer is as at its first start: first values, no lock, no announced time-outs.
    void Restart();

    [[nodiscard]] LiveDevice& Device() { return live_; }
    /// The living process that keeps the printer; 0 for none.
    [[nodiscard]] uint32_t LockHolder() const;

    /// Whether the client has stopped waiting for the reply to a request that arrived `elapsedMs` ago.
    [[nodiscard]] bool HasGivenUp(uint32_t clientProcessId, uint64_t elapsedMs) const {
        return sessions_.HasGivenUp(clientProcessId, elapsedMs);
    }

  private:
    struct WordRow;
    static const WordRow kWords[];

    [[nodiscard]] std::string_view AnswerCommands(std::string_view request);
    /// Adds the command's item to the reply; false when the command was refused.
    [[nodiscard]] bool CarryOut(const Command& command);
    [[nodiscard]] bool CarryOutOnSetting(Setting& setting, const Command& command);
    [[nodiscard]] bool ReadSetting(const Setting& setting, const Command& command);
    [[nodiscard]] bool IsOnline() const { return reach_ != Reach::NotReached && online_.value == "YES"; }
    [[nodiscard]] bool Done(uint32_t number, std::string_view item);
    [[nodiscard]] bool Refuse(uint32_t number, std::string_view text, std::string_view subject);

    [[nodiscard]] bool Acknowledge(const WordRow& row, const Command& command);
    [[nodiscard]] bool AnnounceTimeout(const WordRow& row, const Command& command);
    [[nodiscard]] bool SwitchCache(const WordRow& row, const Command& command);
    [[nodiscard]] bool Lock(const WordRow& row, const Command& command);
    [[nodiscard]] bool Unlock(const WordRow& row, const Command& command);
    [[nodiscard]] bool IsLockedByAnother();
    [[nodiscard]] bool RefuseAsLocked();
    [[nodiscard]] bool GetStatus(const WordRow& row, const Command& command);
    [[nodiscard]] bool GetCapabilities(const WordRow& row, const Command& command);
    [[nodiscard]] bool OrderSupplies(const WordRow& row, const Command& command);
    [[nodiscard]] bool UpgradeFirmware(const WordRow& row, const Command& command);

    DeviceModel& model_;
    const Setting& online_;
    Surroundings surroundings_;
    LiveDevice live_;
    SessionTable sessions_;
    decltype(Origin::replies) firstReplies_;
    decltype(Origin::replies) fixedReplies_;  // of these, what still stands
    uint32_t lockHolder_ = 0;                 // process id

    // Of the request that is being answered.
    uint32_t client_ = 0;
    Reach reach_ = Reach::Reached;
    uint32_t number_ = 0;
    std::string items_;
    std::string reply_;
};

}  // namespace vprinter
