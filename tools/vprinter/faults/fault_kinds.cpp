// The rows. Words of a row are those of the documents: scripts/fault_tables.py carries them there.
#include "vprinter/faults/fault_kinds.h"

#include <fmt/core.h>

#include <iterator>

namespace vprinter {
namespace {

constexpr uint64_t kMaxCount = 1'000'000'000;
constexpr uint64_t kMaxSeconds = 1'000'000;
constexpr uint64_t kMaxMs = 600'000;
constexpr uint64_t kMaxReplyBytes = 1 << 20;

constexpr std::string_view kMilliseconds = "milliseconds";
constexpr std::string_view kSeconds = "seconds";

constexpr FaultField kSelection[] = {
    {"match", FieldForm::Readable, "text", 0, 0,
     "the requests meant (required): their whole text, in which a `*` stands for any characters"},
    {"printer", FieldForm::Text, "port name", 0, 0, "this printer only"},
    {"skip", FieldForm::Number, "number", 0, kMaxCount, "lets that many matching requests through first"},
    {"times", FieldForm::Number, "number", 1, kMaxCount,
     "applies that many times, then never again; without it, always"},
    {"from", FieldForm::Number, kSeconds, 0, kMaxSeconds,
     "not before: counted from the start of the printer, or from when a rule came later"},
    {"until", FieldForm::Number, kSeconds, 1, kMaxSeconds, "not after, counted in the same way"},
    {"every", FieldForm::Number, kSeconds, 1, kMaxSeconds,
     "applies, then lets all through until so much time has passed"},
    {"chance", FieldForm::Number, "percent", 1, 100,
     "applies to about so many of a hundred; the same seed and the same requests have the same faults"},
    {"seed", FieldForm::Number, "number", 0, UINT64_MAX, "of `chance` and `jitter`; without it, 1"},
    {"name", FieldForm::Text, "text", 0, 0, "by which the rule can be taken away"},
    {"comment", FieldForm::Anything, "anything", 0, 0, "for people, of no effect"},
};

constexpr std::string_view kNoReply = "0xE0000003 when its time is over; the next call works";
constexpr std::string_view kIncomplete = "a query fails with 0xE0000012";

constexpr FaultKind kKinds[] = {
    {{"delay", FieldForm::Number, kMilliseconds, 1, kMaxMs, "carries out and answers that much later"},
     FaultAction::None,
     "waits; 0xE0000003 when its time is over, and the reply is not sent any more"},
    {{"jitter", FieldForm::Number, kMilliseconds, 1, kMaxMs,
      "up to that much later, another time at each request"},
     FaultAction::None,
     "as with `delay`"},
    {{"late", FieldForm::Yes, "true", 0, 0,
      "with a delay: answers although the client must have given up and withdrawn its request"},
     FaultAction::None,
     "0xE0000003; the late reply is not taken for that of the next call"},
    {{"noReply", FieldForm::Yes, "true", 0, 0, "the request is carried out, nothing is answered"},
     FaultAction::NoReply,
     "0xE0000003, though the setting has changed; the next call works"},
    {{"lost", FieldForm::Yes, "true", 0, 0, "the request is not carried out, nothing is answered"},
     FaultAction::Lost,
     kNoReply},
    {{"hang", FieldForm::Number, kMilliseconds, 1, kMaxMs,
      "as with `lost`, and for so long no other request is taken either"},
     FaultAction::Hang,
     "0xE0000003, others 0xE0000002 when their time is over before it ends; then all works"},
    {{"restart", FieldForm::Number, kMilliseconds, 0, kMaxMs,
      "as with `hang`; then settings and address book are back at their first values, and the lock and the "
      "announced time-outs are forgotten"},
     FaultAction::Restart,
     "as with `hang`; then it reads the first values"},
    {{"crashBefore", FieldForm::Yes, "true", 0, 0, "the process is gone when the request has arrived"},
     FaultAction::CrashBefore,
     "0xE0000003, later calls 0xE0000002; works again with the next process"},
    {{"crashAfter", FieldForm::Yes, "true", 0, 0,
      "the process is gone when the reply has been sent and the state kept"},
     FaultAction::CrashAfter,
     "works; later calls 0xE0000002 until there is a process again"},
    {{"busy", FieldForm::Number, kMilliseconds, 1, kMaxMs,
      "for so long, whatever the device has to answer is answered 1999 and not carried out, whether it "
      "matches or not"},
     FaultAction::Busy,
     "170; works again afterwards"},
    {{"offline", FieldForm::Number, kMilliseconds, 1, kMaxMs, "the same with 100003"},
     FaultAction::Offline,
     "4319; works again afterwards"},
    {{"lockLost", FieldForm::Yes, "true", 0, 0,
      "it is forgotten who holds the lock; then the request is answered"},
     FaultAction::LockLost,
     "works; other programs are let in, and the holder's unlocking works"},
    {{"notKept", FieldForm::Yes, "true", 0, 0, "answered as ever, but every setting stays as it was"},
     FaultAction::NotKept,
     "a set works, and the next query has the old value"},
    {{"otherProcess", FieldForm::YesOrNumber, "process id, or true for the printer's own", 1, UINT32_MAX,
      "addresses the reply to that process"},
     FaultAction::OtherProcess,
     kNoReply},
    {{"aborted", FieldForm::Yes, "true", 0, 0, "marks the reply as that of an aborted operation"},
     FaultAction::Aborted,
     "works: the reply counts"},
    {{"previousReply", FieldForm::Yes, "true", 0, 0, "sends the reply to the request before this one again"},
     FaultAction::PreviousReply,
     "takes its value for the one it asked for, or fails by the value's type: 0xE0000011, 87"},
    {{"duplicate", FieldForm::Yes, "true", 0, 0, "sends the reply twice, as two messages"},
     FaultAction::Duplicate,
     "works; the second one is not taken for the reply to the next call"},
    {{"split", FieldForm::Number, "bytes", 1, kMaxReplyBytes,
      "sends the reply as two messages, the first with so many bytes"},
     FaultAction::Split,
     "takes the first for all: 0xE0000012; the second is not taken for the reply to the next call"},
    {{"repeat", FieldForm::Number, "number", 2, 100'000, "sends the reply that many times in one message"},
     FaultAction::Repeat,
     "works with the first one"},
    {{"cut", FieldForm::Number, "bytes", 0, kMaxReplyBytes, "sends the first so many bytes of the reply"},
     FaultAction::Cut,
     "0xE0000012; 0xE0000003 when nothing is left of it"},
    {{"noTerminator", FieldForm::Yes, "true", 0, 0, "leaves out the last byte of the reply"},
     FaultAction::NoTerminator,
     kIncomplete},
    {{"noNumber", FieldForm::Yes, "true", 0, 0, "leaves out the response number"},
     FaultAction::NoNumber,
     "a setting works; what goes by the number, such as a list or the lock, fails with 0xE0000011"},
    {{"responseNumber", FieldForm::Number, "number", 0, UINT64_MAX, "gives the reply this response number"},
     FaultAction::ResponseNumber,
     "by the number: 1999 is 170, 3400 is 22, 3450 is 23, 100003 is 4319, 100009 is 0xE0000003"},
    {{"wrongKey", FieldForm::Readable, "text with escapes", 0, 0, "the first key of the reply is this one"},
     FaultAction::WrongKey,
     "takes the value all the same: the key of a single value is not compared; lists and the clock fail"},
    {{"value", FieldForm::Readable, "text with escapes", 0, 0, "the first value of the reply is this one"},
     FaultAction::Value,
     "cuts a number beyond its type's range to the type; 0xE0000011 for no number, 87 for an unknown word"},
    {{"highBit", FieldForm::Yes, "true", 0, 0,
      "the first value of the reply comes with the highest bit of each byte set, as in a wrong encoding"},
     FaultAction::HighBit,
     "a text has other characters; numbers fail with 0xE0000011, words with 87"},
    {{"items", FieldForm::Number, "number", 1, 100'000, "the reply ends behind so many of its items"},
     FaultAction::Items,
     "a list is shorter, and good; the clock fails"},
    {{"pad", FieldForm::Number, "bytes", 1, kMaxReplyBytes,
      "lengthens the value of the reply until it has so many bytes"},
     FaultAction::Pad,
     "a text is cut to its buffer; a number fails with 0xE0000011"},
    {{"garbage", FieldForm::Hex, "text, or `\"hex:00 FF\"`", 0, 0, "sends these bytes as they are"},
     FaultAction::Garbage,
     kIncomplete},
    {{"reply", FieldForm::Readable, "text with escapes", 0, 0, "sends this instead of the reply"},
     FaultAction::Reply,
     "judges and reads it like any other"},
};

tools::Json FieldJson(const FaultField& field) {
    return {{"field", field.name}, {"value", field.value}, {"meaning", field.meaning}};
}

std::string FieldText(const FaultField& field) {
    return fmt::format("  {:<15} {}\n                  {}\n", field.name, field.value, field.meaning);
}

}  // namespace

std::span<const FaultField> SelectionFields() {
    return kSelection;
}

std::span<const FaultKind> FaultKinds() {
    return kKinds;
}

tools::Json FaultFieldsJson() {
    tools::Json selection = tools::Json::EmptyArray();
    for (const FaultField& field : kSelection)
        selection.Append(FieldJson(field));
    tools::Json kinds = tools::Json::EmptyArray();
    for (const FaultKind& kind : kKinds) {
        tools::Json row = FieldJson(kind.field);
        row["client"] = kind.client;
        row["goesWithOthers"] = kind.action == FaultAction::None;
        kinds.Append(std::move(row));
    }
    return {{"selection", std::move(selection)}, {"kinds", std::move(kinds)}};
}

std::string FaultFieldsText() {
    std::string text = "Fields that choose the requests of a rule:\n\n";
    for (const FaultField& field : kSelection)
        text += FieldText(field);
    text +=
        "\nFields that say what the printer does, and behind -> what a program sees of it. A rule has one; "
        "delay, jitter and late go with every other:\n\n";
    for (const FaultKind& kind : kKinds)
        text += FieldText(kind.field) + fmt::format("                  -> {}\n", kind.client);
    return text;
}

}  // namespace vprinter
