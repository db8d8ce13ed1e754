// Everybody who takes part. A peer whose package is missing at build time is not in the table.
#include <stdexcept>

#include "engine/contender.h"
#include "library/library.h"
#include "limits/polling.h"
#include "limits/sleeping.h"
#include "peers/peers.h"

namespace {

// clang-format off
const Contender* const kContenders[] = {
    &kPollingLimit,
    &kSleepingLimit,
    &kLargePollingLimit,
    &kLargeSleepingLimit,
    &kGetFaxRedials,
    &kTypedGetFaxRedials,
    &kSetFaxRedials,
    &kRawExchange,
    &kFramedExchange,
    &kGetterSweep,
    &kBareSweep,
    &kFleetListing,
    &kFleetRaw,
    &kUnixSocket,
    &kPipe,
#ifdef KESTREL_BENCH_QUEUE
    &kMessageQueue,
#endif
#ifdef KESTREL_BENCH_ZEROMQ
    &kZeroMq,
#endif
#ifdef KESTREL_BENCH_DBUS
    &kDBus,
#endif
#ifdef KESTREL_BENCH_GRPC
    &kGrpc,
#endif
#ifdef KESTREL_BENCH_SNMP
    &kSnmp,
#endif
#ifdef KESTREL_BENCH_IPP
    &kIpp,
#endif
};
// clang-format on

}  // namespace

std::span<const Contender* const> Contenders() {
    return kContenders;
}

const Contender& FindContender(const std::string& id) {
    for (const Contender* contender : kContenders)
        if (contender->id == id) return *contender;
    throw std::runtime_error("no contender " + id);
}
