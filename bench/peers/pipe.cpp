// Two named pipes for each client; the server has a thread for each pair.
#include <fcntl.h>
#include <sys/stat.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "peers/byte_stream.h"

namespace {

constexpr unsigned kPairs = 4;

std::string RequestPipe(const Place& place, unsigned index) {
    return place.File("request") + std::to_string(index);
}

std::string ReplyPipe(const Place& place, unsigned index) {
    return place.File("reply") + std::to_string(index);
}

void Serve(const Place& place) {
    std::vector<std::jthread> threads;
    for (unsigned i = 0; i < kPairs; ++i) {
        const std::string requests = RequestPipe(place, i);
        const std::string replies = ReplyPipe(place, i);
        if (mkfifo(requests.c_str(), 0600) != 0 || mkfifo(replies.c_str(), 0600) != 0)
            throw std::runtime_error("no pipe");
        threads.emplace_back([=] {
            const int input = open(requests.c_str(), O_RDONLY);
            AnswerStream(input, open(replies.c_str(), O_WRONLY));
        });
    }
    Ready();
}

std::unique_ptr<Client> Connect(const Place& place, unsigned index) {
    const int output = open(RequestPipe(place, index).c_str(), O_WRONLY);
    return std::make_unique<StreamClient>(open(ReplyPipe(place, index).c_str(), O_RDONLY), output);
}

}  // namespace

const Contender kPipe = {"pipe", "pipe", "polling", "sleeping", Serve, Connect, "h4m1", true};
