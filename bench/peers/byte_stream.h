// What sockets and pipes have in common: short messages that arrive whole.
#pragma once

#include <unistd.h>

#include <string_view>

#include "peers/peers.h"

/// Answers until the other side is gone.
inline void AnswerStream(int input, int output) {
    char request[64];
    while (read(input, request, sizeof(request)) > 0)
        if (write(output, kPeerReply.data(), kPeerReply.size()) < 0) return;
}

class StreamClient : public Client {
  public:
    StreamClient(int input, int output) : input_(input), output_(output) {}
    ~StreamClient() override {
        close(input_);
        if (output_ != input_) close(output_);
    }

    void Exchange() override {
        length_ = -1;
        if (write(output_, kPeerRequest.data(), kPeerRequest.size()) > 0)
            length_ = read(input_, reply_, sizeof(reply_));
    }
    bool IsRight() override {
        return length_ > 0 && std::string_view(reply_, static_cast<size_t>(length_)) == kPeerReply;
    }

  private:
    int input_;
    int output_;
    char reply_[64];
    ssize_t length_ = -1;
};
