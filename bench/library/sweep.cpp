// All standard getters one after the other, and the same requests sent raw with nothing read from the
// replies.
#include <kestrel/sdk.h>

#include <array>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "catalogue/rows.h"
#include "library/library.h"
#include "library/printer.h"

namespace {

constexpr size_t kValueBytes = 256;  // more than the longest text
using Value = std::array<char, kValueBytes>;
using Call = kestrel_bool (*)(void* value);

template <typename Out>
kestrel_bool Into(kestrel_bool (*getter)(Out*, uint32_t), void* value) {
    return getter(static_cast<Out*>(value), kTimeoutMs);
}

constexpr Call kGetters[] = {
#define GETTER(function, base, type, words, bytes) [](void* value) { return Into(function, value); },
#define INDEXED(base, index, name, initial, bytes, privacy, about) \
    [](void* value) { return Get##base(index, static_cast<kestrel_char*>(value), kTimeoutMs); },
#define CONSTANT(base, name, type, about) [](void* value) { return Into(Get##base, value); },
#include "catalogue/settings.def"
};

class Sweep final : public Client {
  public:
    explicit Sweep(const Place& place) {
        SelectInstalledPrinter(place);
        Exchange();
        first_ = values_;
    }

    void Exchange() override {
        failures_ = 0;
        for (size_t i = 0; i < std::size(kGetters); ++i)
            failures_ += kGetters[i](values_[i].data()) == 0;
    }

    bool IsRight() override { return failures_ == 0 && values_ == first_; }

  private:
    std::vector<Value> values_ = std::vector<Value>(std::size(kGetters));
    std::vector<Value> first_;
    int failures_ = 0;
};

class BareSweep final : public Client {
  public:
    explicit BareSweep(const Place& place) {
        SelectInstalledPrinter(place);
        for (const catalogue::Row& row : catalogue::Rows())
            if (row.CanRead() && row.id) requests_.push_back(std::string(row.key) + '?');
    }

    void Exchange() override {
        wrong_ = 0;
        for (const std::string& request : requests_) {
            char reply[kValueBytes];
            uint32_t length = 0;
            const kestrel_bool done = ::SendCmd(request.data(), static_cast<uint32_t>(request.size()), reply,
                                                sizeof(reply), &length, kTimeoutMs);
            wrong_ += !done || !Answers({reply, length}, request);
        }
    }

    bool IsRight() override { return wrong_ == 0; }

  private:
    static bool Answers(std::string_view reply, std::string_view request) {
        constexpr std::string_view kOpening = "0000,";
        return reply.starts_with(kOpening) &&
               reply.substr(kOpening.size()).starts_with(request.substr(0, request.size() - 1));
    }

    std::vector<std::string> requests_;
    int wrong_ = 0;
};

}  // namespace

const Contender kGetterSweep = {
    "sweep", "all getters", "polling", "sleeping", ServeVirtualPrinter, Connect<Sweep>, "h"};
const Contender kBareSweep = {
    "bare", "their requests, raw", "polling", "sleeping", ServeVirtualPrinter, Connect<BareSweep>, "h"};
