// Boost.Interprocess message queues in shared memory: one for all requests, one for each client's replies.
#include <boost/interprocess/ipc/message_queue.hpp>

#include <string>

#include "peers/peers.h"

namespace {

using boost::interprocess::create_only;
using boost::interprocess::message_queue;
using boost::interprocess::open_only;

constexpr unsigned kMostClients = 4;
constexpr size_t kDepth = 16;
constexpr size_t kMessageBytes = 64;

// Queues lie in /dev/shm under names of their own; those of one measurement begin with its folder's name.
std::string QueueName(const Place& place, const std::string& purpose) {
    return place.folder.substr(place.folder.rfind('/') + 1) + '-' + purpose;
}

std::string ReplyQueue(const Place& place, unsigned index) {
    return QueueName(place, "reply" + std::to_string(index));
}

void Serve(const Place& place) {
    message_queue requests(create_only, QueueName(place, "requests").c_str(), kDepth, kMessageBytes);
    std::vector<std::unique_ptr<message_queue>> replies;
    for (unsigned i = 0; i < kMostClients; ++i)
        replies.push_back(std::make_unique<message_queue>(create_only, ReplyQueue(place, i).c_str(), kDepth,
                                                          kMessageBytes));
    Ready();
    for (;;) {
        char request[kMessageBytes];
        size_t length = 0;
        unsigned client = 0;  // a request's priority says whose it is
        requests.receive(request, sizeof(request), length, client);
        replies[client]->send(kPeerReply.data(), kPeerReply.size(), 0);
    }
}

class QueueClient final : public Client {
  public:
    QueueClient(const Place& place, unsigned index)
        : index_(index),
          requests_(open_only, QueueName(place, "requests").c_str()),
          replies_(open_only, ReplyQueue(place, index).c_str()) {}

    void Exchange() override {
        unsigned priority = 0;
        requests_.send(kPeerRequest.data(), kPeerRequest.size(), index_);
        replies_.receive(reply_, sizeof(reply_), length_, priority);
    }
    bool IsRight() override { return std::string_view(reply_, length_) == kPeerReply; }

  private:
    unsigned index_;
    message_queue requests_;
    message_queue replies_;
    char reply_[kMessageBytes];
    size_t length_ = 0;
};

}  // namespace

const Contender kMessageQueue = {"queue", "Boost message_queue", "polling", "sleeping",
                                 Serve,   Connect<QueueClient>,  "h4m1",    true};
