// The exports of a setting called by the row's names, one way for each type.
#include "kestrel/printer/printer.h"

#include <fmt/core.h>

#include <filesystem>
#include <system_error>
#include <vector>

#include "kestrel/installation/product_configuration.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

// A value that no call sets: still there after a selection, it says that the configuration did not load.
constexpr DWORD kUntouched = 0x20000000;
constexpr uint32_t kLargestMessage = 65791;

Failure SelectionFailure(const Library& library, const std::string& product, const std::string& name) {
    const DWORD code = GetLastError();
    const std::filesystem::path configuration = ConfigurationPath(product);
    std::error_code error;
    if (code == kUntouched || !std::filesystem::exists(configuration, error)) {
        return {ExitCode::OwnFault,
                fmt::format("there is no usable product configuration {}", configuration.string()),
                "run `kestrel setup`",
                {},
                {},
                {}};
    }
    if (name.empty() && code == ERROR_SUCCESS) {
        return {ExitCode::NoPrinter,
                "no installed printer uses a driver of the product",
                "add one with `kestrel printers add NAME --port PORT`, or name a printer with --printer",
                {},
                {},
                {}};
    }
    SetLastError(code);
    const std::string who = name.empty() ? "the product's printer" : fmt::format("the printer \"{}\"", name);
    return FailureOfLastCall(library, "cannot select " + who, Exchange::Write);
}

// The exported getters and setters differ in the type of the value alone.
template <typename Number>
bool GetNumber(const Library& library, const char* getter, int64_t& number, uint32_t timeoutMs) {
    Number got{};
    const bool done = library.Find<kestrel_bool(Number*, uint32_t)>(getter)(&got, timeoutMs) != 0;
    number = int64_t{got};
    return done;
}

template <typename Number>
bool SetNumber(const Library& library, const char* setter, int64_t number, uint32_t timeoutMs) {
    const auto value = static_cast<Number>(number);
    return library.Find<kestrel_bool(Number, uint32_t)>(setter)(value, timeoutMs) != 0;
}

struct NumberCalls {
    catalogue::Type type;
    bool (*get)(const Library&, const char*, int64_t&, uint32_t);
    bool (*set)(const Library&, const char*, int64_t, uint32_t);
};
// An address is read into four bytes and set as one number whose lowest byte goes first: on the machines
// that this runs on both are the same 32 bits.
constexpr NumberCalls kNumberCalls[] = {
    {catalogue::Type::Bool, GetNumber<kestrel_bool>, SetNumber<kestrel_bool>},
    {catalogue::Type::U8, GetNumber<uint8_t>, SetNumber<uint8_t>},
    {catalogue::Type::S8, GetNumber<int8_t>, SetNumber<int8_t>},
    {catalogue::Type::U16, GetNumber<uint16_t>, SetNumber<uint16_t>},
    {catalogue::Type::U32, GetNumber<uint32_t>, SetNumber<uint32_t>},
    {catalogue::Type::S32, GetNumber<int32_t>, SetNumber<int32_t>},
    {catalogue::Type::Enum, GetNumber<uint32_t>, SetNumber<uint32_t>},
    {catalogue::Type::Address, GetNumber<uint32_t>, SetNumber<uint32_t>},
};

const NumberCalls& CallsOf(catalogue::Type type) {
    for (const NumberCalls& calls : kNumberCalls) {
        if (calls.type == type) return calls;
    }
    throw Failure{
        ExitCode::OwnFault, "a setting of an unknown type", "install the product again", {}, {}, {}};
}

// One of several texts behind a pair of functions is chosen by a number in front of the other arguments.
bool GetText(const Library& library, const catalogue::Row& row, std::string& text, uint32_t timeoutMs) {
    using Plain = kestrel_bool(kestrel_char*, uint32_t);
    using Indexed = kestrel_bool(uint32_t, kestrel_char*, uint32_t);
    std::vector<kestrel_char> buffer(row.bufferBytes / sizeof(kestrel_char));
    const kestrel_bool done = row.index < 0 ? library.Find<Plain>(row.getter)(buffer.data(), timeoutMs)
                                            : library.Find<Indexed>(row.getter)(
                                                  static_cast<uint32_t>(row.index), buffer.data(), timeoutMs);
    if (done != 0) text = Utf8FromWide(buffer.data());
    return done != 0;
}

bool SetText(const Library& library, const catalogue::Row& row, const std::string& text, uint32_t timeoutMs) {
    using Plain = kestrel_bool(const kestrel_char*, uint32_t);
    using Indexed = kestrel_bool(uint32_t, const kestrel_char*, uint32_t);
    const WideText wide = WideArgument(text, "value");
    const kestrel_bool done = row.index < 0 ? library.Find<Plain>(row.setter)(wide.c_str(), timeoutMs)
                                            : library.Find<Indexed>(row.setter)(
                                                  static_cast<uint32_t>(row.index), wide.c_str(), timeoutMs);
    return done != 0;
}

}  // namespace

Printer::Printer(const Library& library, const std::string& product, const std::string& name,
                 uint32_t timeoutMs)
    : library_(library), timeoutMs_(timeoutMs) {
    const WideText wide = WideArgument(name, "printer name");
    const auto select = library.Find<decltype(SelectPrinter)>("SelectPrinter");
    SetLastError(kUntouched);
    if (!select(name.empty() ? nullptr : wide.c_str())) throw SelectionFailure(library, product, name);
}

Value Printer::Get(const catalogue::Row& row) const {
    Value value;
    const bool done = FormOf(row) == ValueForm::Text
                          ? GetText(library_, row, value.text, timeoutMs_)
                          : CallsOf(row.readType).get(library_, row.getter, value.number, timeoutMs_);
    if (!done) throw FailureOfLastCall(library_, fmt::format("cannot read {}", row.name), Exchange::Read);
    return value;
}

void Printer::Set(const catalogue::Row& row, const Value& value) const {
    const bool done = FormOf(row) == ValueForm::Text
                          ? SetText(library_, row, value.text, timeoutMs_)
                          : CallsOf(row.writeType).set(library_, row.setter, value.number, timeoutMs_);
    if (!done) throw FailureOfLastCall(library_, fmt::format("cannot set {}", row.name), Exchange::Write);
}

void Printer::Verify(const catalogue::Row& row, const Value& wanted) const {
    const Value kept = Get(row);
    if (kept == wanted) return;
    // The kept value of a secret is nobody's business here.
    const std::string shown =
        row.IsSecret() ? "another value" : fmt::format("\"{}\"", FormatValue(row, kept));
    throw ValueFailure(fmt::format("the printer acknowledged {} and kept {}", row.name, shown),
                       "choose a value that the printer supports");
}

RawReply Printer::Send(std::string_view request) const {
    if (request.empty() || request.size() > kLargestMessage) {
        throw ValueFailure(fmt::format("a request of {} bytes cannot be sent", request.size()),
                           fmt::format("send 1 to {} bytes", kLargestMessage));
    }
    RawReply reply;
    reply.bytes.resize(kLargestMessage);
    uint32_t length = 0;
    const bool good =
        library_.Find<decltype(SendCmd)>("SendCmd")(request.data(), static_cast<uint32_t>(request.size()),
                                                    reply.bytes.data(), kLargestMessage, &length, timeoutMs_);
    if (!good) throw FailureOfLastCall(library_, "the request failed", Exchange::Write);
    reply.bytes.resize(length);
    reply.responseNumber = library_.Find<decltype(GetLastResponseNum)>("GetLastResponseNum")();
    return reply;
}

}  // namespace cli
