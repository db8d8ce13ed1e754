// One request and its reply. The last-error values of the channel never leave this file: every operation ends
// by setting its own.
//
// A reply buffer is an array of the channel's longest message on the stack, never cleared: to zero 64 KiB
// takes longer than a whole exchange.
#include <algorithm>
#include <cstring>

#include "kestrel/sdk_errors.h"
#include "session/exchange_record.h"
#include "session/kestrel_sdk.h"
#include "session/remaining_time.h"
#include "session/response_judgement.h"
#include "session/timeout_announcement.h"

namespace session {

bool KestrelSDK::SendCmd(const void* request, uint32_t requestLength, void* replyBuffer,
                         uint32_t replyBufferSize, uint32_t* replyLength, uint32_t timeoutMs) {
    if (replyLength != nullptr) *replyLength = 0;
    // Every reply fits a buffer of this size, so it can be received in place.
    const bool inPlace = replyBuffer != nullptr && replyBufferSize >= ipc::kMaxOplMessage;
    char ownBuffer[ipc::kMaxOplMessage];
    char* const reply = inPlace ? static_cast<char*>(replyBuffer) : ownBuffer;
    uint32_t received = 0;
    const uint32_t error = Transact(request, requestLength, reply, received, timeoutMs);
    if (replyBuffer != nullptr) {
        const uint32_t copied = std::min(received, replyBufferSize);
        if (!inPlace) std::memcpy(replyBuffer, ownBuffer, copied);
        if (replyLength != nullptr) *replyLength = copied;
    }
    SetLastError(error);
    return error == NO_ERROR;
}

bool KestrelSDK::Query(opl::Key key, std::string_view& reply, uint32_t timeoutMs) {
    return Query({key}, reply, timeoutMs);
}

bool KestrelSDK::Query(std::initializer_list<opl::Key> keys, std::string_view& reply, uint32_t timeoutMs) {
    std::string& request = NewRequest();
    for (const opl::Key key : keys)
        builder.AppendQuery(request, key);
    return Query(request, reply, timeoutMs);
}

bool KestrelSDK::Query(opl::RecordList list, uint32_t index, opl::RecordField field, std::string_view& reply,
                       uint32_t timeoutMs) {
    std::string& request = NewRequest();
    builder.AppendRecordQuery(request, list, index, field);
    return Query(request, reply, timeoutMs);
}

bool KestrelSDK::Query(opl::Word word, std::string_view& reply, uint32_t timeoutMs) {
    std::string& request = NewRequest();
    builder.AppendWord(request, word);
    return Query(request, reply, timeoutMs);
}

bool KestrelSDK::Query(std::string_view request, std::string_view& reply, uint32_t timeoutMs) {
    reply_.clear();
    char stream[ipc::kMaxOplMessage];
    uint32_t received = 0;
    uint32_t error =
        Transact(request.data(), static_cast<uint32_t>(request.size()), stream, received, timeoutMs);
    if (error == NO_ERROR) {
        opl::OPLParser framer;
        const char* message = nullptr;
        uint32_t messageLength = 0;
        if (framer.ParseStream(stream, received, message, messageLength) == opl::ParseResult::MessageReady)
            reply_.assign(message, messageLength);
        if (reply_.empty()) error = SDK_ERROR_UNEXPECTED_REPLY;
    }
    reply = reply_;
    SetLastError(error);
    return error == NO_ERROR;
}

std::string& KestrelSDK::NewRequest() {
    request_.clear();
    return request_;
}

bool KestrelSDK::SetWithAck(std::string_view request, uint32_t timeoutMs) {
    return SendCmd(request.data(), static_cast<uint32_t>(request.size()), nullptr, 0, nullptr, timeoutMs);
}

bool KestrelSDK::RejectReply(std::string_view reply, uint32_t error) {
    lastBadResponse = reply;
    SetLastError(error);
    return false;
}

bool KestrelSDK::TakeResponseNumber(std::string_view reply) {
    uint32_t number = 0;
    if (!parser.GetResponseNumber(reply, number)) return RejectReply(reply, SDK_ERROR_BAD_REPLY);
    lastResponseNum = number;
    return true;
}

uint32_t KestrelSDK::Transact(const void* request, uint32_t requestLength, char* reply, uint32_t& received,
                              uint32_t timeoutMs) {
    lastBadResponse.clear();
    if (request == nullptr && requestLength > 0) return ERROR_INVALID_PARAMETER;
    if (!oplChannel.IsOpen()) return SDK_ERROR_CHANNEL_NOT_OPEN;
    if (oplChannel.IsForPortList()) return SDK_ERROR_PORT_LIST;
    if (IsRecording()) [[unlikely]]
        return TransactOnRecord(request, requestLength, reply, received, timeoutMs);
    const uint32_t error = Exchange(request, requestLength, reply, received, timeoutMs);
    return error != NO_ERROR ? error : Judge({reply, received});
}

uint32_t KestrelSDK::TransactOnRecord(const void* request, uint32_t requestLength, char* reply,
                                      uint32_t& received, uint32_t timeoutMs) {
    const ExchangeRecord record;
    uint32_t error = Exchange(request, requestLength, reply, received, timeoutMs);
    if (error == NO_ERROR)
        error = Judge({reply, received});
    else
        received = 0;
    record.Keep(oplChannel.GetName(), {.request = {static_cast<const char*>(request), requestLength},
                                       .reply = {reply, received},
                                       .timeoutMs = timeoutMs,
                                       .error = error});
    return error;
}

uint32_t KestrelSDK::Exchange(const void* request, uint32_t requestLength, char* reply, uint32_t& received,
                              uint32_t timeoutMs) {
    const RemainingTime time(timeoutMs);
    uint32_t left = timeoutMs;
    if (timeoutMs != lastTimeoutSent) {
        const uint32_t error = AnnounceTimeout(timeoutMs, time);
        if (error != NO_ERROR) return error;
        left = time.Milliseconds();
    }
    // The channel would post the beginning of a longer request and wait for its reply to be fetched.
    if (requestLength > ipc::kMaxOplMessage) return SDK_ERROR_SEND_INCOMPLETE;
    if (oplChannel.Send(request, requestLength, left) < requestLength) return SDK_ERROR_SEND_INCOMPLETE;
    left = time.Milliseconds();
    if (left == 0) {
        oplChannel.Cancel();
        return ERROR_TIMEOUT;
    }
    received = oplChannel.Receive(reply, ipc::kMaxOplMessage, left);
    return received != 0 ? NO_ERROR : SDK_ERROR_NO_REPLY;
}

// An exchange of its own before the request's, of which only the fact matters that it was answered.
uint32_t KestrelSDK::AnnounceTimeout(uint32_t timeoutMs, const RemainingTime& time) {
    // Before it is sent, and it stays after a failure: an announcement that fails is not made again.
    lastTimeoutSent = timeoutMs;
    announcement_.clear();
    builder.AppendSetInt(announcement_, opl::Key::TimeoutParam, AnnouncedTimeout(timeoutMs));
    if (oplChannel.Send(announcement_.data(), static_cast<uint32_t>(announcement_.size()), timeoutMs) == 0)
        return SDK_ERROR_SEND_INCOMPLETE;
    const uint32_t left = time.Milliseconds();
    if (left == 0) {
        oplChannel.Cancel();
        return ERROR_TIMEOUT;
    }
    char firstByte;  // the rest of the reply is dropped with it
    return oplChannel.Receive(&firstByte, sizeof(firstByte), left) != 0 ? NO_ERROR : SDK_ERROR_NO_REPLY;
}

uint32_t KestrelSDK::Judge(std::string_view reply) {
    uint32_t number = 0;
    if (!parser.GetResponseNumber(reply, number)) number = 0;
    lastResponseNum = number;
    const uint32_t error = ErrorOfResponse(number);
    if (error != NO_ERROR) lastBadResponse = reply;
    return error;
}

}  // namespace session
