// One getter, in C and in C++, and one setter against the virtual printer.
#include <kestrel/sdk.hpp>

#include <stdexcept>

#include "library/library.h"
#include "library/printer.h"

namespace {

constexpr uint8_t kRedials = 3;

class Getter final : public Client {
  public:
    explicit Getter(const Place& place) {
        SelectInstalledPrinter(place);
        if (!::SetFaxRedials(kRedials, kTimeoutMs)) throw std::runtime_error("the setting is refused");
    }
    void Exchange() override { succeeded_ = ::GetFaxRedials(&redials_, kTimeoutMs) != 0; }
    bool IsRight() override { return succeeded_ && redials_ == kRedials; }

  private:
    uint8_t redials_ = 0;
    bool succeeded_ = false;
};

class TypedGetter final : public Client {
  public:
    explicit TypedGetter(const Place& place) : printer_(SelectTyped(place)) {
        printer_.set<kestrel::setting::fax_redials>(kRedials).value();
    }
    void Exchange() override { redials_ = printer_.get<kestrel::setting::fax_redials>(); }
    bool IsRight() override { return redials_ && *redials_ == kRedials; }

  private:
    static kestrel::Printer SelectTyped(const Place& place) {
        SelectInstalledPrinter(place);
        return kestrel::Printer::select().value();
    }

    kestrel::Printer printer_;
    kestrel::Result<uint8_t> redials_ = uint8_t{0};
};

class Setter final : public Client {
  public:
    explicit Setter(const Place& place) { SelectInstalledPrinter(place); }
    void Exchange() override { succeeded_ = ::SetFaxRedials(kRedials, kTimeoutMs) != 0; }
    bool IsRight() override { return succeeded_ && GetLastResponseNum() == 0; }

  private:
    bool succeeded_ = false;
};

}  // namespace

const Contender kGetFaxRedials = {
    "get", "GetFaxRedials", "polling", "sleeping", ServeVirtualPrinter, Connect<Getter>, "h4m1"};
const Contender kTypedGetFaxRedials = {"get-cpp",
                                       "GetFaxRedials through sdk.hpp",
                                       "polling",
                                       "sleeping",
                                       ServeVirtualPrinter,
                                       Connect<TypedGetter>,
                                       "h"};
const Contender kSetFaxRedials = {
    "set", "SetFaxRedials", "polling", "sleeping", ServeVirtualPrinter, Connect<Setter>, "h"};
