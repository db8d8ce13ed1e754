// SNMP: one variable of snmpd, over UDP of this machine.
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "peers/network_port.h"

namespace {

constexpr oid kContact[] = {1, 3, 6, 1, 2, 1, 1, 4, 0};
constexpr int kStartAttempts = 100;

class SnmpClient final : public Client {
  public:
    explicit SnmpClient(const Place& place) : peer_("udp:127.0.0.1:" + ReadPort(place)) {
        // No configuration of the machine or of its users counts.
        setenv("SNMPCONFPATH", place.folder.c_str(), 1);
        setenv("MIBS", "", 1);
        init_snmp("bench");
        netsnmp_session wanted;
        snmp_sess_init(&wanted);
        wanted.version = SNMP_VERSION_2c;
        wanted.peername = peer_.data();
        wanted.community = community_;
        wanted.community_len = sizeof(community_) - 1;
        wanted.timeout = 100'000;  // microseconds
        wanted.retries = 0;
        session_ = snmp_sess_open(&wanted);
        if (session_ == nullptr) throw std::runtime_error("no SNMP session");
    }
    ~SnmpClient() override {
        ForgetReply();
        snmp_sess_close(session_);
    }

    void Exchange() override {
        ForgetReply();
        netsnmp_pdu* const request = snmp_pdu_create(SNMP_MSG_GET);
        snmp_add_null_var(request, kContact, std::size(kContact));
        snmp_sess_synch_response(session_, request, &reply_);
    }
    bool IsRight() override {
        return reply_ != nullptr && reply_->errstat == SNMP_ERR_NOERROR && reply_->variables != nullptr &&
               reply_->variables->type == ASN_OCTET_STR &&
               std::string_view(reinterpret_cast<const char*>(reply_->variables->val.string),
                                reply_->variables->val_len) == kPeerReply;
    }

  private:
    void ForgetReply() {
        if (reply_ != nullptr) snmp_free_pdu(reply_);
        reply_ = nullptr;
    }

    std::string peer_;
    u_char community_[7] = "public";
    void* session_ = nullptr;
    netsnmp_pdu* reply_ = nullptr;
};

void Serve(const Place& place) {
    const std::string port = ChoosePort(place);
    std::ofstream(place.File("snmpd.conf"))
        << "rocommunity public 127.0.0.1\nsyscontact " << kPeerReply << "\n";
    setenv("MIBS", "", 1);
    setenv("SNMP_PERSISTENT_DIR", place.folder.c_str(), 1);
    const pid_t daemon = Spawn({"snmpd", "-f", "-C", "-c", place.File("snmpd.conf"), "-Lf", "/dev/null", "-p",
                                place.File("snmpd.pid"), "udp:127.0.0.1:" + port});
    SnmpClient client(place);
    for (int attempt = 0; !client.IsRight(); ++attempt) {
        if (attempt == kStartAttempts) throw std::runtime_error("snmpd does not answer");
        usleep(50'000);
        client.Exchange();
    }
    Ready({daemon});
    pause();
}

}  // namespace

const Contender kSnmp = {"snmp", "SNMP get", "polling", "sleeping", Serve, Connect<SnmpClient>, "h4m1", true};
