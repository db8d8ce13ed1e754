// A process ends at every place on the way of a message, while two clients work.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "child_process.h"
#include "effort.h"

namespace {

using std::chrono::milliseconds;

constexpr const char* kName = "Steps";
// A signal that comes while its reader rests on another's late reply is lost with it: that costs a time-out.
constexpr long kHardLimitMs = 2 * 1000 + 250;

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
        ChildProcess process = Start({role, kName});
        std::istringstream lines(process.ReadAll());
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
        ChildProcess victim = Start({place.role, kName, std::to_string(hit), place.name});
        ++kills_;
        ASSERT_EQ(128 + 9, victim.Wait()) << place.role << ", " << place.name << " was not reached";
        if (isServer) StartServer();
        ExpectFreshClientServed(place);
    }

    void ExpectFreshClientServed(const Place& place) {
        ChildProcess fresh = Start({"once", kName});
        std::istringstream line(fresh.ReadLine().value_or("0 0 0"));
        int served = 0;
        long attempts = 0;
        long took = 0;
        line >> served >> attempts >> took;
        EXPECT_TRUE(served == 1 && took <= kHardLimitMs)
            << place.role << ", " << place.name << ": " << attempts << " attempts, " << took << " ms";
        slow_ += took > 1000 ? 1 : 0;
        atOnce_ += attempts == 1 ? 1 : 0;
        longest_ = std::max(longest_, took);
        ++fresh_;
    }

    void ExpectSurvived(ChildProcess& worker) {
        worker.WriteLine("end");
        std::istringstream line(worker.ReadLine().value_or(""));
        long good = 0;
        long failed = 0;
        long wrong = 1;
        long longest = 0;
        long late = 0;
        line >> good >> failed >> wrong >> longest >> late;
        std::printf("survivor: %ld good, %ld failed, %ld late, %ld wrong, longest %ld ms\n", good, failed,
                    late, wrong, longest);
        EXPECT_EQ(0, wrong);
        EXPECT_LE(late, failed) << "each is the reply to a request that was given up";
        EXPECT_GT(good, kills_);
        EXPECT_LE(failed, kills_);
        EXPECT_LE(longest, kHardLimitMs);
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
    std::array<ChildProcess, 2> workers = {Start({"work", kName}), Start({"work", kName})};
    for (ChildProcess& worker : workers)
        ASSERT_EQ("ready", worker.ReadLine());
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
    std::printf(
        "%zu places, %ld kills; of %ld fresh clients %ld served at once, %ld after more than a second, the "
        "slowest after %ld ms\n",
        places_.size(), kills_, fresh_, atOnce_, slow_, longest_);
    EXPECT_LE(slow_, 1 + fresh_ / 100);
    for (ChildProcess& worker : workers)
        ExpectSurvived(worker);
}

}  // namespace
