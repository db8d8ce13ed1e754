// D-Bus method calls through a daemon of this measurement's own.
#include <dbus/dbus.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include "peers/peers.h"
#include "peers/private_bus.h"

namespace {

constexpr const char* kService = "bench.Printer";
constexpr const char* kObject = "/bench/Printer";
constexpr int kTimeoutMs = 5000;

DBusConnection* OpenBus(const Place& place) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        DBusConnection* const bus = dbus_connection_open_private(BusAddress(place).c_str(), nullptr);
        if (bus != nullptr && dbus_bus_register(bus, nullptr)) return bus;
        usleep(10'000);  // the daemon makes its socket before it listens
    }
    throw std::runtime_error("no connection to the bus");
}

void Serve(const Place& place) {
    const pid_t daemon = StartBus(place);
    DBusConnection* const bus = OpenBus(place);
    dbus_bus_request_name(bus, kService, 0, nullptr);
    Ready({daemon});
    const char* const text = kPeerReply.data();
    while (dbus_connection_read_write(bus, -1)) {
        while (DBusMessage* const request = dbus_connection_pop_message(bus)) {
            if (dbus_message_get_type(request) == DBUS_MESSAGE_TYPE_METHOD_CALL) {
                DBusMessage* const reply = dbus_message_new_method_return(request);
                dbus_message_append_args(reply, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
                dbus_connection_send(bus, reply, nullptr);
                dbus_connection_flush(bus);
                dbus_message_unref(reply);
            }
            dbus_message_unref(request);
        }
    }
}

class BusClient final : public Client {
  public:
    explicit BusClient(const Place& place) : bus_(OpenBus(place)) {}
    ~BusClient() override {
        ForgetReply();
        dbus_connection_close(bus_);
        dbus_connection_unref(bus_);
    }

    void Exchange() override {
        ForgetReply();
        DBusMessage* const request = dbus_message_new_method_call(kService, kObject, kService, "Ask");
        const char* const text = kPeerRequest.data();
        dbus_message_append_args(request, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
        reply_ = dbus_connection_send_with_reply_and_block(bus_, request, kTimeoutMs, nullptr);
        dbus_message_unref(request);
    }
    bool IsRight() override {
        const char* text = nullptr;
        return reply_ != nullptr &&
               dbus_message_get_args(reply_, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID) &&
               text == kPeerReply;
    }

  private:
    void ForgetReply() {
        if (reply_ != nullptr) dbus_message_unref(reply_);
        reply_ = nullptr;
    }

    DBusConnection* bus_;
    DBusMessage* reply_ = nullptr;
};

}  // namespace

const Contender kDBus = {"dbus", "D-Bus", "polling", "sleeping", Serve, Connect<BusClient>, "h4m1", true};
