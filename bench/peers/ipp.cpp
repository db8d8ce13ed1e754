// IPP: one attribute of a printer served by ippeveprinter, over a connection that stays open.
#include <cups/cups.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "peers/network_port.h"
#include "peers/private_bus.h"

namespace {

constexpr const char* kResource = "/ipp/print";
constexpr const char* kAttribute = "printer-name";
constexpr std::string_view kName = "DeviceSettings Fax Redials 3";
constexpr int kStartAttempts = 100;
constexpr int kTimeoutMs = 5000;

class IppClient final : public Client {
  public:
    explicit IppClient(const Place& place)
        : port_(std::stoi(ReadPort(place))),
          uri_("ipp://localhost:" + std::to_string(port_) + kResource),
          connection_(httpConnect2("localhost", port_, nullptr, AF_INET, HTTP_ENCRYPTION_NEVER, 1, kTimeoutMs,
                                   nullptr)) {
        if (connection_ == nullptr) throw std::runtime_error("no connection to ippeveprinter");
    }
    ~IppClient() override {
        ippDelete(reply_);
        httpClose(connection_);
    }

    void Exchange() override {
        ippDelete(reply_);
        ipp_t* const request = ippNewRequest(IPP_OP_GET_PRINTER_ATTRIBUTES);
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri_.c_str());
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", nullptr,
                     kAttribute);
        reply_ = cupsDoRequest(connection_, request, kResource);
    }
    bool IsRight() override {
        ipp_attribute_t* const found = ippFindAttribute(reply_, kAttribute, IPP_TAG_NAME);
        return found != nullptr && ippGetString(found, 0, nullptr) == kName;
    }

  private:
    int port_;
    std::string uri_;
    http_t* connection_;
    ipp_t* reply_ = nullptr;
};

bool Answers(const Place& place) {
    try {
        IppClient client(place);
        client.Exchange();
        return client.IsRight();
    } catch (const std::exception&) {
        return false;
    }
}

void Serve(const Place& place) {
    const std::string port = ChoosePort(place);
    // It announces itself on the system's bus and does not start without one.
    StartBus(place);
    setenv("DBUS_SYSTEM_BUS_ADDRESS", BusAddress(place).c_str(), 1);
    const pid_t printer = Spawn({"ippeveprinter", "-r", "off", "-n", "localhost", "-p", port, "-d",
                                 place.folder, std::string(kName)});
    for (int attempt = 0; !Answers(place); ++attempt) {
        if (attempt == kStartAttempts) throw std::runtime_error("ippeveprinter does not answer");
        usleep(50'000);
    }
    Ready({printer});
    pause();
}

}  // namespace

const Contender kIpp = {"ipp", "IPP attribute",    "polling", "sleeping",
                        Serve, Connect<IppClient>, "h4m1",    true};
