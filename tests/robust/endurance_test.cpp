// What must hold for long: dead owners, many clients, hostile neighbours, stopped partners, and nothing left
// over.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <thread>
#include <vector>

#include "child_process.h"
#include "dead_owners.h"
#include "effort.h"
#include "hammer_counts.h"
#include "ipc/opl_channel.h"

namespace {

using std::chrono::milliseconds;

ChildProcess StartServer(const std::string& name) {
    ChildProcess server({CHANNEL_STEPPER, "server", name, "-1", "never"});
    EXPECT_EQ("ready", server.ReadLine());
    return server;
}

std::vector<long> Numbers(ChildProcess& process) {
    std::istringstream line(process.ReadLine(std::chrono::seconds(120)).value_or(""));
    return {std::istream_iterator<long>(line), {}};
}

bool Exchanged(ipc::OPLChannel& channel, uint32_t timeoutMs) {
    char reply[16];
    return channel.Send("hello", 5, timeoutMs) == 5 && channel.Receive(reply, sizeof(reply), timeoutMs) == 5;
}

TEST(DeadOwners, Every_death_with_a_mutex_is_told_once_and_nobody_loses_a_turn) {
    const HANDLE section = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                              sizeof(DeadOwners), TEXT("Global\\Owners"));
    auto* const owners = static_cast<DeadOwners*>(MapViewOfFile(section, FILE_MAP_ALL_ACCESS, 0, 0, 0));
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("Global\\Contended"));
    const auto wanted = static_cast<uint64_t>(effort.Of(10'000, 100));
    owners->killsWanted = wanted;
    std::mt19937 random = effort.Random();
    std::array<ChildProcess, 8> contenders;
    while (owners->kills < wanted) {
        for (ChildProcess& contender : contenders)
            if (!contender.IsRunning())
                contender = ChildProcess(
                    {ENDURANCE_HELPER, "contend", "Contended", "Owners", std::to_string(random())});
        std::this_thread::sleep_for(milliseconds(1));
    }
    for (ChildProcess& contender : contenders) {
        if (!contender.IsRunning()) continue;
        contender.WriteLine("end");
        const int code = contender.Wait();
        EXPECT_TRUE(code == 0 || code == 128 + 9) << code << "; the last victim may still have been dying";
    }
    // The last death may have found no other waiter.
    const DWORD last = WaitForSingleObject(mutex, 1000);
    const uint64_t told = owners->abandoned + (last == WAIT_ABANDONED ? 1 : 0);
    std::printf(
        "%llu owners killed, %llu takes, next owner after %lld ms at most, %llu after more than 100 ms\n",
        static_cast<unsigned long long>(owners->kills), static_cast<unsigned long long>(owners->takes),
        static_cast<long long>(owners->longestHeir / 1'000'000),
        static_cast<unsigned long long>(owners->late));
    EXPECT_EQ(wanted, told);
    EXPECT_EQ(0u, owners->lostTurns);
    EXPECT_LE(owners->late, 1 + wanted / 100);
    ReleaseMutex(mutex);
    CloseHandle(mutex);
    UnmapViewOfFile(owners);
    CloseHandle(section);
}

TEST(DeadOwners, A_mutex_whose_contenders_were_all_killed_is_to_be_had_at_once) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("Global\\Deserted"));
    std::mt19937 random = effort.Random();
    for (int i = 0; i < effort.Of(2000, 40); ++i) {
        std::array<ChildProcess, 4> contenders;
        for (ChildProcess& contender : contenders)
            contender = ChildProcess({ENDURANCE_HELPER, "contend", "Deserted", "Owners", "0"});
        std::this_thread::sleep_for(std::chrono::microseconds(10'000 + random() % 10'000));
        for (ChildProcess& contender : contenders)
            contender.Kill();
        for (ChildProcess& contender : contenders)
            EXPECT_EQ(128 + 9, contender.Wait());
        // A place may have been kept for one of them a moment ago.
        if (WaitForSingleObject(mutex, 0) == WAIT_TIMEOUT) {
            Sleep(30);
            ASSERT_NE(WAIT_TIMEOUT, WaitForSingleObject(mutex, 0)) << i;
        }
        ReleaseMutex(mutex);
    }
    CloseHandle(mutex);
}

TEST(DeadOwners, Every_thread_that_ends_with_a_mutex_is_told_once) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("Global\\ThreadOwned"));
    for (int i = 0; i < effort.Of(1000, 100); ++i) {
        std::thread([&] { EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, 1000)); }).join();
        ASSERT_EQ(WAIT_ABANDONED, WaitForSingleObject(mutex, 100)) << i;
        ReleaseMutex(mutex);
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, 100)) << i;
        ReleaseMutex(mutex);
    }
    CloseHandle(mutex);
}

// Owners keep a mutex for a turn of 5 ms, and there are 256 of them: each waits for more than a second.
TEST(Load, Two_hundred_and_fifty_six_clients_get_their_own_replies) {
    ChildProcess server = StartServer("Load");
    std::vector<ChildProcess> hammers;
    for (int i = 0; i < 32; ++i) {
        hammers.push_back(
            ChildProcess({CHANNEL_HAMMER, "Load", "8", std::to_string(effort.Of(600'000, 6'000)), "5000"}));
        ASSERT_EQ("ready", hammers.back().ReadLine());
    }
    for (ChildProcess& hammer : hammers)
        hammer.WriteLine("go");
    HammerCounts all;
    for (ChildProcess& hammer : hammers) {
        HammerCounts counts;
        std::istringstream(hammer.ReadLine(std::chrono::seconds(700)).value_or("")) >> counts;
        all.Add(counts);
    }
    std::cout << all << '\n';
    EXPECT_GT(all.good, 1000);
    EXPECT_EQ(0, all.Failures() + all.late + all.wrong);
    const long fair = effort.isLong ? 2 : 100;  // in seconds a client has one turn or five
    EXPECT_LE(all.most, fair * all.least);
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
            const std::string name = "Leak" + std::to_string(i);
            ASSERT_TRUE(desk[i]->Open(ipc::ChannelRole::Client, WideText(name.begin(), name.end()).c_str()));
        }
        for (int i = 0; i < threads; ++i)
            std::thread([] {
                const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("Global\\LeakMutex"));
                WaitForSingleObject(mutex, 0);
                ReleaseMutex(mutex);
                CloseHandle(mutex);
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

TEST(HostilePeer, Whatever_it_scribbles_nobody_crashes_or_hangs_and_afterwards_all_is_well) {
    constexpr long kLongestMs = 1000;  // twice the time-out and 250 ms, and a busy machine
    ChildProcess server = StartServer("Hostile");
    std::mt19937 random = effort.Random();
    std::vector<ChildProcess> workers;
    for (int i = 0; i < 4; ++i) {
        workers.push_back(ChildProcess({CHANNEL_STEPPER, "hurry", "Hostile"}));
        ASSERT_EQ("ready", workers.back().ReadLine());
    }
    std::array<ChildProcess, 2> scribblers;
    for (ChildProcess& scribbler : scribblers)
        scribbler = ChildProcess({ENDURANCE_HELPER, "scribble", "Hostile", std::to_string(random())});
    std::this_thread::sleep_for(std::chrono::seconds(effort.Of(600, 60)));
    for (ChildProcess& scribbler : scribblers) {
        EXPECT_TRUE(scribbler.IsRunning());
        scribbler.WriteLine("end");
        EXPECT_EQ(0, scribbler.Wait());
    }
    for (ChildProcess& worker : workers) {
        worker.WriteLine("end");
        const std::vector<long> counts = Numbers(worker);
        ASSERT_EQ(5u, counts.size());
        std::printf("%ld good, %ld failed, %ld wrong, longest %ld ms\n", counts[0], counts[1], counts[2],
                    counts[3]);
        EXPECT_LE(counts[3], kLongestMs);
        EXPECT_EQ(0, worker.Wait());
    }
    EXPECT_TRUE(server.IsRunning());
    ChildProcess fresh({CHANNEL_STEPPER, "once", "Hostile"});
    EXPECT_EQ(1, Numbers(fresh).at(0));
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
        EXPECT_LE(GetTickCount64() - start, 2 * timeoutMs + 250) << timeoutMs;
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
    ChildProcess worker({CHANNEL_STEPPER, "work", "Stopped"});
    ASSERT_EQ("ready", worker.ReadLine());
    worker.Stop();
    std::this_thread::sleep_for(stop);
    worker.Continue();
    std::this_thread::sleep_for(milliseconds(500));
    EXPECT_TRUE(Exchanged(channel, 2000) || Exchanged(channel, 2000)) << GetLastError();
    worker.WriteLine("end");
    const std::vector<long> counts = Numbers(worker);
    ASSERT_EQ(5u, counts.size());
    EXPECT_EQ(0, counts[2]) << "wrong replies";
}

}  // namespace
