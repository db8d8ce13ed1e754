// The ring; a viewer that is too slow is told how much it has missed.
#include "vprinter/api/traffic.h"

#include <algorithm>

namespace vprinter::api {

void Traffic::Add(const Exchange& exchange) {
    {
        const std::lock_guard guard(lock_);
        KeptExchange& kept = ring_[count_ % kRing];
        kept.number = count_++;
        kept.exchange = exchange;
        kept.port.assign(exchange.port);
        kept.request.assign(exchange.request.substr(0, kMostKept));
        kept.reply.assign(exchange.reply.substr(0, kMostKept));
        kept.replyBytes = exchange.reply.size();
        kept.remark.assign(exchange.remark);
        kept.exchange.request = kept.exchange.reply = kept.exchange.remark = kept.exchange.port = {};
    }
    news_.notify_all();
}

void Traffic::NoteRevision(const std::string& port, uint64_t revision) {
    {
        const std::lock_guard guard(lock_);
        uint64_t& known = revisions_[port];
        if (known == revision) return;
        known = revision;
    }
    news_.notify_all();
}

void Traffic::End() {
    {
        const std::lock_guard guard(lock_);
        ended_ = true;
    }
    news_.notify_all();
}

std::shared_ptr<Traffic::Viewer> Traffic::Viewer::Begin(Traffic& traffic) {
    if (traffic.viewers_.fetch_add(1) < kMostViewers) return std::make_shared<Viewer>(traffic);
    traffic.viewers_.fetch_sub(1);
    return nullptr;
}

Traffic::Viewer::Viewer(Traffic& traffic) : traffic_(traffic) {
    const std::lock_guard guard(traffic_.lock_);
    next_ = traffic_.count_;
    known_ = traffic_.revisions_;
}

Traffic::Viewer::~Viewer() {
    traffic_.viewers_.fetch_sub(1);
}

Traffic::Viewer::News Traffic::Viewer::Next(std::chrono::milliseconds longest) {
    News news;
    std::unique_lock guard(traffic_.lock_);
    traffic_.news_.wait_for(guard, longest, [&] {
        return traffic_.ended_ || traffic_.count_ != next_ || traffic_.revisions_ != known_;
    });
    news.ended = traffic_.ended_;
    const uint64_t oldest = traffic_.count_ - std::min<uint64_t>(traffic_.count_, kRing);
    if (next_ < oldest) news.missed = oldest - next_;
    for (next_ = std::max(next_, oldest); next_ < traffic_.count_; ++next_)
        news.exchanges.push_back(traffic_.ring_[next_ % kRing]);
    for (const auto& [port, revision] : traffic_.revisions_)
        if (const auto known = known_.find(port); known == known_.end() || known->second != revision)
            news.revisions[port] = revision;
    known_ = traffic_.revisions_;
    return news;
}

std::string EventText(const Traffic::Viewer::News& news) {
    tools::Json exchanges = tools::Json::EmptyArray();
    for (const KeptExchange& kept : news.exchanges)
        exchanges.Append(ExchangeView(kept));
    tools::Json revisions = tools::Json::EmptyObject();
    for (const auto& [port, revision] : news.revisions)
        revisions[port] = revision;
    const tools::Json event = {{"exchanges", exchanges}, {"missed", news.missed}, {"revisions", revisions}};
    return "data: " + event.Dump() + "\n\n";
}

}  // namespace vprinter::api
