// What must hold for long: dead owners, many clients, hostile neighbours, stopped partners, and nothing left
// over.
#include <array>
#include <cstring>
#include <iostream>
#include <iterator>
#include <memory>

#include "contract/handle_support.h"
#include "effort.h"
#include "forked.h"
#include "ipc/opl_channel.h"
#include "widened.h"
#include "working_client.h"

namespace {

using std::chrono::milliseconds;

ChildProcess StartServer(const std::string& name) {
    ChildProcess server({CHANNEL_STEPPER, "server", name, "-1", "never"});
    EXPECT_EQ("ready", server.ReadLine());
    return server;
}

void* Shared(DWORD size, const WideText& name = {}) {
    return MapViewOfFile(Section(size, name), FILE_MAP_ALL_ACCESS, 0, 0, 0);
}

bool Exchanged(ipc::OPLChannel& channel, uint32_t timeoutMs) {
    char reply[16];
    return channel.Send("hello", 5, timeoutMs) == 5 && channel.Receive(reply, sizeof(reply), timeoutMs) == 5;
}

// What the processes that contend for one mutex tell each other.
struct Owners {
    std::atomic<int> takes;
    std::atomic<int> kills;
    std::atomic<int> abandoned;
    std::atomic<int> lostTurns;        // waits of five seconds
    std::atomic<int64_t> diedAt;       // ns, of the last owner that died with it
    std::atomic<int64_t> longestHeir;  // ns until the next owner
    std::atomic<int> late;             // next owners after more than 100 ms
    std::atomic<bool> isOver;
};

int64_t NowNs() {
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

// Takes the mutex again and again; at times dies with it, until so many have.
int Contend(HANDLE mutex, Owners& owners, std::mt19937 random, int wanted) {
    while (!owners.isOver) {
        const DWORD result = WaitForSingleObject(mutex, 5000);
        if (result == WAIT_ABANDONED) {
            ++owners.abandoned;
            const int64_t took = NowNs() - owners.diedAt;
            if (took > 100'000'000) ++owners.late;
            if (took > owners.longestHeir) owners.longestHeir = took;
        } else if (result != WAIT_OBJECT_0) {
            ++owners.lostTurns;
            continue;
        }
        ++owners.takes;
        if (random() % 8 == 0 && owners.kills < wanted) {
            ++owners.kills;
            owners.diedAt = NowNs();
            kill(getpid(), SIGKILL);
        }
        ReleaseMutex(mutex);
    }
    return 0;
}

TEST(DeadOwners, Every_death_with_a_mutex_is_told_once_and_nobody_loses_a_turn) {
    auto& owners = *static_cast<Owners*>(Shared(sizeof(Owners)));
    const Handle mutex = Mutex(TEXT("Global\\Contended"));
    const int wanted = effort.Of(10'000, 100);
    std::mt19937 random = effort.Random();
    std::array<Forked, 8> contenders;
    while (owners.kills < wanted) {
        for (Forked& contender : contenders)
            if (!contender.IsRunning())
                contender = Forked(
                    [&, seed = random()] { return Contend(mutex, owners, std::mt19937(seed), wanted); });
        std::this_thread::sleep_for(milliseconds(1));
    }
    owners.isOver = true;
    for (Forked& contender : contenders)
        contender.Wait();
    // The last death may have found no other waiter.
    const DWORD last = WaitForSingleObject(mutex, 1000);
    std::cout << owners.kills << " owners killed, " << owners.takes << " takes, next owner after "
              << owners.longestHeir / 1'000'000 << " ms at most, " << owners.late
              << " after more than 100 ms\n";
    EXPECT_EQ(wanted, owners.abandoned + (last == WAIT_ABANDONED ? 1 : 0));
    EXPECT_EQ(0, owners.lostTurns);
    if (effort.isLong) {
        EXPECT_LE(owners.late, 1 + wanted / 100);
    }
    ReleaseMutex(mutex);
}

TEST(DeadOwners, A_mutex_whose_contenders_were_all_killed_is_to_be_had_at_once) {
    auto& owners = *static_cast<Owners*>(Shared(sizeof(Owners)));
    const Handle mutex = Mutex(TEXT("Global\\Deserted"));
    std::mt19937 random = effort.Random();
    for (int i = 0; i < effort.Of(2000, 40); ++i) {
        std::array<Forked, 4> contenders;
        for (Forked& contender : contenders)
            contender = Forked([&] { return Contend(mutex, owners, std::mt19937(), 0); });
        std::this_thread::sleep_for(std::chrono::microseconds(10'000 + random() % 10'000));
        for (Forked& contender : contenders)
            contender.Kill();
        for (Forked& contender : contenders)
            EXPECT_EQ(128 + 9, contender.Wait());
        // A place may have been kept for one of them a moment ago.
        if (WaitForSingleObject(mutex, 0) == WAIT_TIMEOUT) {
            Sleep(30);
            ASSERT_NE(WAIT_TIMEOUT, WaitForSingleObject(mutex, 0)) << i;
        }
        ReleaseMutex(mutex);
    }
}

// Owners keep a mutex for a turn of 5 ms, and there are 256 of them: each waits for more than a second.
TEST(Load, Two_hundred_and_fifty_six_clients_get_their_own_replies) {
    ChildProcess server = StartServer("Load");
    std::vector<WorkingClient> clients;
    for (int i = 0; i < 32; ++i)
        clients.emplace_back("Load", 8, 20'000);
    for (WorkingClient& client : clients)
        client.Begin();
    std::this_thread::sleep_for(milliseconds(effort.Of(600'000, 6'000)));
    ExchangeCounts all;
    for (WorkingClient& client : clients)
        all.Add(client.Counts());
    std::cout << all << '\n';
    EXPECT_GT(all.good, 1000);
    EXPECT_EQ(0, all.Failures() + all.late + all.wrong);
    // In seconds a client has one turn or five, and on a busy machine its program begins late.
    EXPECT_GT(all.least, 0);
    if (effort.isLong) {
        EXPECT_LE(all.most, 2 * all.least);
    }
    for (WorkingClient& client : clients)
        client.Close();
}

constexpr size_t kPrinters = 200;  // used by one process at the same time

struct Usage {
    long residentKb = 0;
    long descriptors = 0;
    long files = 0;
};

Usage UsageNow() {
    Usage usage;
    const auto entries = [](const std::filesystem::path& folder) {
        return std::distance(std::filesystem::directory_iterator(folder), {});
    };
    // Not statm, whose figure each processor may hold back a part of.
    std::ifstream rollup("/proc/self/smaps_rollup");
    for (std::string word; rollup >> word && word != "Rss:";) {
    }
    rollup >> usage.residentKb;
    usage.descriptors = entries("/proc/self/fd");
    usage.files = entries(std::filesystem::path(std::getenv("WINPORT_HOME")) / "kernel");
    return usage;
}

TEST(Leaks, Exchanges_openings_threads_and_printers_leave_nothing) {
    ChildProcess server = StartServer("Leak");
    const auto work = [](int exchanges, int openings, int threads) {
        ipc::OPLChannel channel;
        ASSERT_TRUE(channel.Open(ipc::ChannelRole::Client, TEXT("Leak")));
        for (int i = 0; i < exchanges; ++i)
            ASSERT_TRUE(Exchanged(channel, 2000)) << GetLastError();
        channel.Close();
        for (int i = 0; i < openings; ++i) {
            ipc::OPLChannel other;
            ASSERT_TRUE(other.Open(ipc::ChannelRole::Client, TEXT("Leak")));
        }
        std::vector<std::unique_ptr<ipc::OPLChannel>> desk(kPrinters);
        for (size_t i = 0; i < desk.size(); ++i) {
            desk[i] = std::make_unique<ipc::OPLChannel>();
            const WideText name = Widened("Leak" + std::to_string(i));
            ASSERT_TRUE(desk[i]->Open(ipc::ChannelRole::Client, name.c_str()));
        }
        for (int i = 0; i < threads; ++i)
            std::thread([] {
                const Handle mutex = Mutex(TEXT("Global\\LeakMutex"));
                WaitForSingleObject(mutex, 0);
                ReleaseMutex(mutex);
            }).join();
    };
    for (int warmUp = 0; warmUp < 2; ++warmUp)
        work(5000, 200, 200);
    static_cast<void>(UsageNow());  // its own first use needs memory too
    const Usage before = UsageNow();
    work(effort.Of(10'000'000, 10'000), effort.Of(10'000, 200), effort.Of(10'000, 200));
    const Usage after = UsageNow();
    std::printf("%ld to %ld KiB\n", before.residentKb, after.residentKb);
    if (!kIsSanitized) {
        EXPECT_LE(after.residentKb, before.residentKb + 64);
    }
    EXPECT_EQ(before.descriptors, after.descriptors);
    EXPECT_EQ(before.files, after.files);
}

// Writes anything into the channel's sections in bursts, and signals anything.
[[noreturn]] int Scribble(const WideText& channel, std::mt19937 random) {
    constexpr DWORD kSize = 65791 + 12;
    constexpr DWORD kLongestRestMs = 50;
    uint8_t* const sections[] = {static_cast<uint8_t*>(Shared(kSize, channel + TEXT("Cmd"))),
                                 static_cast<uint8_t*>(Shared(kSize, channel + TEXT("Resp")))};
    const WCHAR* const suffixes[] = {TEXT("CmdNotifyEvent"), TEXT("CmdCancelEvent"), TEXT("RespNotifyEvent"),
                                     TEXT("RespCancelEvent")};
    for (;;) {
        uint8_t* const section = sections[random() % 2];
        // Mostly the header, where a wrong byte is worth most.
        const uint32_t bits = random();
        std::memcpy(section + (random() % 4 != 0 ? random() % 12 : random() % (kSize - 4)), &bits, 4);
        if (random() % 4 == 0) SetEvent(AutoEvent(channel + suffixes[random() % 4]));
        // Whoever is never left in peace fails at its first step, and the others are not tried.
        if (random() % 64 == 0) Sleep(1 + random() % kLongestRestMs);
    }
}

TEST(HostilePeer, Whatever_it_scribbles_nobody_crashes_or_hangs_and_afterwards_all_is_well) {
    constexpr long kLongestMs = 5000;  // of 10 ms, on a busy machine
    ChildProcess server = StartServer("Hostile");
    std::mt19937 random = effort.Random();
    std::vector<WorkingClient> workers;
    for (int i = 0; i < 4; ++i)
        workers.emplace_back("Hostile", 1, 10);
    for (WorkingClient& worker : workers)
        worker.Begin();
    std::array<Forked, 2> scribblers;
    for (Forked& scribbler : scribblers)
        scribbler =
            Forked([seed = random()] { return Scribble(TEXT("Global\\Hostile"), std::mt19937(seed)); });
    std::this_thread::sleep_for(std::chrono::seconds(effort.Of(600, 4)));
    for (Forked& scribbler : scribblers) {
        EXPECT_TRUE(scribbler.IsRunning());
        scribbler = Forked();
    }
    for (WorkingClient& worker : workers) {
        const ExchangeCounts counts = worker.Counts();
        std::cout << counts << '\n';
        EXPECT_LE(counts.longestMs, kLongestMs);
        worker.Close();
    }
    EXPECT_TRUE(server.IsRunning());
    EXPECT_GT(WorkingClient::Served("Hostile", 1000, 50).good, 0);
}

TEST(Time, A_stopped_partner_costs_the_time_out_and_no_more) {
    const milliseconds stop(effort.Of(5000, 1000));
    ChildProcess server = StartServer("Stopped");
    ipc::OPLChannel channel;
    ASSERT_TRUE(channel.Open(ipc::ChannelRole::Client, TEXT("Stopped")));
    ASSERT_TRUE(Exchanged(channel, 2000));
    for (const uint32_t timeoutMs : {0u, 1u, 300u}) {
        server.Stop();
        std::this_thread::sleep_for(milliseconds(50));  // until it has
        const uint64_t start = GetTickCount64();
        EXPECT_FALSE(Exchanged(channel, timeoutMs));
        EXPECT_LE(GetTickCount64() - start, 2 * timeoutMs + 2000) << timeoutMs;
        std::this_thread::sleep_for(stop / 3);
        server.Continue();
        // The stopped one may still answer what nobody waits for any more.
        std::this_thread::sleep_for(milliseconds(200));
        channel.Cancel();
        static_cast<void>(Exchanged(channel, 500));
        EXPECT_TRUE(Exchanged(channel, 2000)) << timeoutMs << ": " << GetLastError();
    }
    server.Stop();
    std::thread later([&] {
        std::this_thread::sleep_for(stop);
        server.Continue();
    });
    EXPECT_TRUE(Exchanged(channel, INFINITE));
    later.join();

    // A stopped client holds its turn: the others time out, and go on with it.
    WorkingClient worker("Stopped", 1, 250, 50);
    worker.Begin();
    worker.Process().Stop();
    std::this_thread::sleep_for(stop);
    worker.Process().Continue();
    std::this_thread::sleep_for(milliseconds(500));
    EXPECT_TRUE(Exchanged(channel, 2000) || Exchanged(channel, 2000)) << GetLastError();
    EXPECT_EQ(0, worker.Counts().wrong);
    worker.Close();
}

}  // namespace
