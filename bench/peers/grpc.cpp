// gRPC, a unary call over a Unix socket.
#include <grpcpp/grpcpp.h>

#include <string>

#include "peers/peers.h"
#include "printer.grpc.pb.h"

namespace {

std::string Address(const Place& place) {
    return "unix:" + place.File("grpc");
}

class Answerer final : public bench::Printer::Service {
    grpc::Status Ask(grpc::ServerContext*, const bench::Text*, bench::Text* reply) override {
        reply->set_text(std::string(kPeerReply));
        return grpc::Status::OK;
    }
};

void Serve(const Place& place) {
    Answerer answerer;
    grpc::ServerBuilder builder;
    builder.AddListeningPort(Address(place), grpc::InsecureServerCredentials());
    builder.RegisterService(&answerer);
    const std::unique_ptr<grpc::Server> server = builder.BuildAndStart();
    Ready();
    server->Wait();
}

class GrpcClient final : public Client {
  public:
    explicit GrpcClient(const Place& place)
        : stub_(bench::Printer::NewStub(
              grpc::CreateChannel(Address(place), grpc::InsecureChannelCredentials()))) {
        request_.set_text(std::string(kPeerRequest));
    }

    void Exchange() override {
        grpc::ClientContext context;
        reply_.Clear();
        status_ = stub_->Ask(&context, request_, &reply_);
    }
    bool IsRight() override { return status_.ok() && reply_.text() == kPeerReply; }

  private:
    std::unique_ptr<bench::Printer::Stub> stub_;
    bench::Text request_;
    bench::Text reply_;
    grpc::Status status_;
};

}  // namespace

const Contender kGrpc = {"grpc", "gRPC", "polling", "sleeping", Serve, Connect<GrpcClient>, "h4m1", true};
