// A process ends at every place on the way of a message, while two clients work.
#include <array>
#include <iostream>

#include "effort.h"
#include "working_client.h"

namespace {

using std::chrono::milliseconds;

constexpr const char* kName = "Steps";
// A signal that comes while its reader rests on another's late reply is lost with it: that costs a time-out
// of a second. The rest is for a busy machine.
constexpr long kHardLimitMs = 5000;

ChildProcess Start(std::vector<std::string> words) {
    words.insert(words.begin(), CHANNEL_STEPPER);
    return ChildProcess(words);
}

struct Place {
    std::string role;
    std::string name;
    int hits;
};

class Steps : public testing::Test {
  protected:
    void StartServer() {
        server_ = Start({"server", kName, "-1", "never"});
        ASSERT_EQ("ready", server_.ReadLine());
    }

    // The places that a process of this role comes by.
    void Survey(const std::string& role) {
        std::istringstream lines(Start({role, kName}).ReadAll());
        for (std::string line; std::getline(lines, line);) {
            std::istringstream words(line);
            Place place{role, {}, 0};
            if (words >> place.hits >> std::ws && std::getline(words, place.name)) places_.push_back(place);
        }
    }

    void KillAt(const Place& place, uint32_t random) {
        const bool isServer = place.role == "server";
        if (isServer) {
            server_.Kill();
            server_.Wait();
            ++kills_;
        }
        const int hit = 1 + static_cast<int>(random % static_cast<uint32_t>(std::min(place.hits, 3)));
        // One whose exchange fails beside the others' goes another way, and to its end: then the next one.
        int code = 0;
        for (int tries = 0; tries < 5 && code == 0; ++tries)
            code = Start({place.role, kName, std::to_string(hit), place.name}).Wait();
        ++kills_;
        ASSERT_EQ(128 + 9, code) << place.role << ", " << place.name << " was not reached";
        if (isServer) StartServer();
        ExpectFreshClientServed(place);
    }

    void ExpectFreshClientServed(const Place& place) {
        const auto start = std::chrono::steady_clock::now();
        const ExchangeCounts counts = WorkingClient::Served(kName, 1000, 50);
        const auto took = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
        EXPECT_TRUE(counts.good > 0 && counts.late + counts.wrong == 0 && took.count() <= kHardLimitMs)
            << place.role << ", " << place.name << ": " << counts << ", " << took.count() << " ms";
        slow_ += took.count() > 1000 ? 1 : 0;
        atOnce_ += counts.Failures() == 0 ? 1 : 0;
        longest_ = std::max<long>(longest_, took.count());
        ++fresh_;
    }

    void ExpectSurvived(WorkingClient& worker) {
        const ExchangeCounts counts = worker.Counts();
        std::cout << "survivor: " << counts << '\n';
        EXPECT_EQ(0, counts.wrong);
        EXPECT_LE(counts.late, counts.Failures()) << "each is the reply to a request that was given up";
        EXPECT_GT(counts.good, kills_);
        EXPECT_LE(counts.Failures(), kills_);
        EXPECT_LE(counts.longestMs, kHardLimitMs);
        worker.Close();
    }

    ChildProcess server_;
    std::vector<Place> places_;
    long kills_ = 0;
    long fresh_ = 0;
    long atOnce_ = 0;
    long slow_ = 0;
    long longest_ = 0;
};

TEST_F(Steps, Whoever_is_killed_wherever_the_next_client_is_served_and_the_others_go_on) {
    StartServer();
    std::array<WorkingClient, 2> workers = {WorkingClient(kName, 1, 250, 50),
                                            WorkingClient(kName, 1, 250, 50)};
    for (WorkingClient& worker : workers)
        worker.Begin();
    Survey("client");
    server_.Kill();
    server_.Wait();
    ++kills_;
    Survey("server");
    StartServer();
    ASSERT_GE(places_.size(), 60u);
    std::mt19937 random = effort.Random();
    const int times = effort.Of(20, 2);
    for (const Place& place : places_)
        for (int i = 0; i < times && !HasFatalFailure(); ++i)
            KillAt(place, random());
    std::cout << places_.size() << " places, " << kills_ << " kills; of " << fresh_ << " fresh clients "
              << atOnce_ << " served at once, " << slow_ << " after more than a second, the slowest after "
              << longest_ << " ms\n";
    if (effort.isLong) {
        EXPECT_LE(slow_, 1 + fresh_ / 100);
    }
    for (WorkingClient& worker : workers)
        ExpectSurvived(worker);
}

}  // namespace
