// The places where kernel objects lie are taken by something else, damaged, full, or out of reach.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "child_process.h"
#include "effort.h"
#include "occupied_file.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using winport::ObjectKind;

struct ChannelObject {
    std::string suffix;
    ObjectKind kind;
};
const ChannelObject kObjects[] = {
    {"Cmd", ObjectKind::Section},
    {"CmdNotifyEvent", ObjectKind::Event},
    {"CmdCancelEvent", ObjectKind::Event},
    {"Resp", ObjectKind::Section},
    {"RespNotifyEvent", ObjectKind::Event},
    {"RespCancelEvent", ObjectKind::Event},
    {"TransactionMutex", ObjectKind::Mutex},
    {"ServerIdleEvent", ObjectKind::Event},
};

constexpr uint64_t kSectionBytes = 65791 + 12;

struct Opened {
    bool done = false;
    long error = 0;
};

class Objects : public testing::Test {
  protected:
    Objects() : home_("/dev/shm/kestrel-objects-" + std::to_string(getpid())) {
        fs::create_directory(home_);
        fs::permissions(home_, fs::perms::owner_all);
        Open("First");  // makes the folder and its lock file
    }
    ~Objects() override { fs::remove_all(home_); }

    [[nodiscard]] std::string Folder() const { return home_ + "/kernel"; }

    // In a process of its own; `prefix`: what starts it.
    Opened Open(const std::string& name, std::vector<std::string> prefix = {}) const {
        for (const std::string& word : {std::string(CHANNEL_CLIENT), name, "1"s, "0"s, "0"s})
            prefix.push_back(word);
        ChildProcess opener(prefix, {{"WINPORT_HOME", home_}});
        std::istringstream line(opener.ReadLine().value_or(""));
        std::string word;
        Opened opened;
        line >> word >> opened.error;
        opened.done = word == "ready";
        if (opened.done) opener.WriteLine("close");
        EXPECT_EQ(0, opener.Wait()) << name;
        return opened;
    }

    void ExpectRefused(const std::string& name, const std::set<long>& errors) {
        const Opened opened = Open(name);
        EXPECT_FALSE(opened.done) << name;
        EXPECT_TRUE(errors.contains(opened.error)) << name << ": " << opened.error;
    }
    // Only what was there before.
    [[nodiscard]] long Files() const {
        return std::distance(fs::directory_iterator(Folder()), fs::directory_iterator());
    }

    std::string home_;
};

TEST_F(Objects, A_squatted_object_is_refused_cleanly_and_nothing_outside_is_written) {
    const std::string outside = home_ + "/outside";
    std::ofstream(outside) << "untouched";
    fs::permissions(outside, fs::perms::owner_read | fs::perms::owner_write);
    const long before = Files();
    for (const ChannelObject& object : kObjects) {
        const std::string name = "Squat" + object.suffix;
        const uint64_t data = object.kind == ObjectKind::Section ? kSectionBytes : 0;
        const size_t whole = winport::kPageSize * (data == 0 ? 1 : 18);
        const ObjectKind other = object.kind == ObjectKind::Event ? ObjectKind::Mutex : ObjectKind::Event;
        struct Page {
            ObjectKind kind;
            uint64_t data;
            size_t size;
            long error;
        };
        std::vector<Page> pages = {
            {other, data, whole, 6}, {object.kind, data, 100, 1392}, {object.kind, data, whole + 4096, 1392}};
        if (data != 0) pages.push_back({object.kind, 4096, 8192, 1610});
        for (const Page& page : pages) {
            const OccupiedFile squatter(Folder(), name, PageOf(name, page.kind, page.data, page.size));
            ExpectRefused("Squat", {page.error});
        }
        // A link belongs to nobody: the first to open the folder sweeps it away, itself and not what it
        // names.
        fs::create_symlink(outside, Folder() + "/global." + name);
        EXPECT_TRUE(Open("Squat").done);
        fs::create_directory(Folder() + "/global." + name);
        ExpectRefused("Squat", {5});
        fs::remove(Folder() + "/global." + name);
        EXPECT_EQ(before, Files()) << name;
        EXPECT_TRUE(Open("Squat").done);
    }
    std::ifstream file(outside);
    EXPECT_EQ("untouched", std::string(std::istreambuf_iterator<char>(file), {}));
}

TEST_F(Objects, An_unreadable_object_is_refused_with_5) {
    constexpr int kNobody = 65534;
    const std::vector<std::string> asNobody = {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534",
                                               "--clear-groups"};
    if (geteuid() != 0 || chown(home_.c_str(), kNobody, kNobody) != 0 ||
        chown(Folder().c_str(), kNobody, kNobody) != 0 ||
        chown((Folder() + "/lock").c_str(), kNobody, kNobody) != 0)
        GTEST_SKIP() << "only root can be somebody else";
    for (const ChannelObject& object : kObjects) {
        const OccupiedFile secret(Folder(), "Secret" + object.suffix, "x");
        fs::permissions(Folder() + "/global.Secret" + object.suffix, fs::perms::none);
        const Opened opened = Open("Secret", asNobody);
        EXPECT_FALSE(opened.done);
        EXPECT_EQ(5, opened.error) << object.suffix;
    }
    EXPECT_TRUE(Open("Secret", asNobody).done);
}

TEST_F(Objects, A_header_that_was_changed_in_any_byte_is_refused) {
    std::mt19937 random = effort.Random();
    const std::string name = "HeaderServerIdleEvent";
    const std::string good = PageOf(name, ObjectKind::Event, 0, winport::kPageSize);
    constexpr size_t kJudged[] = {
        offsetof(winport::ObjectPage, magic),        offsetof(winport::ObjectPage, layoutVersion),
        offsetof(winport::ObjectPage, kind),         offsetof(winport::ObjectPage, dataSize),
        offsetof(winport::ObjectPage, dataSize) + 4, offsetof(winport::ObjectPage, nameLength)};
    const size_t nameStart = offsetof(winport::ObjectPage, name);
    const size_t nameBytes = 2 * (name.size() + 7);
    for (int i = 0; i < effort.Of(2000, 200); ++i) {
        std::string changed = good;
        const size_t place = i % 2 == 0 ? kJudged[random() % std::size(kJudged)] + random() % 4
                                        : nameStart + random() % nameBytes;
        changed[place] = static_cast<char>(changed[place] ^ static_cast<char>(1 + random() % 255));
        const OccupiedFile occupied(Folder(), name, changed);
        ExpectRefused("Header", {6, 1392});
    }
}

TEST_F(Objects, A_full_memory_file_system_gives_112_and_leaves_no_file) {
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        GTEST_SKIP() << "only root can mount";
    const auto mounted = [&](const std::string& options) {
        return mount("none", home_.c_str(), "tmpfs", 0, ("mode=0700," + options).c_str()) == 0;
    };
    // Six objects of a page, two sections of eighteen.
    constexpr int kNeeded = (6 + 2 * 18) * 4096;
    for (const int size : {4096, 65536, 131072, kNeeded - 4096}) {
        ASSERT_TRUE(mounted("size=" + std::to_string(size)));
        for (const bool isFilled : {false, true}) {
            if (isFilled) {
                std::ofstream filler(home_ + "/filler");
                filler << std::string(static_cast<size_t>(size), 'x') << std::flush;
            }
            const Opened opened = Open("Full");
            EXPECT_FALSE(opened.done) << size;
            EXPECT_EQ(112, opened.error) << size;
            EXPECT_EQ(1, Files()) << "more than the lock file, " << size;
        }
        fs::remove(home_ + "/filler");
        ASSERT_EQ(0, mount("none", home_.c_str(), "tmpfs", MS_REMOUNT, "size=1m"));
        EXPECT_TRUE(Open("Full").done);
        umount(home_.c_str());
    }
    // The registry takes more than that.
    const auto makeKey = [&] {
        return ChildProcess({REGISTRY_PROBE, "create"}, {{"WINPORT_HOME", home_}}).Wait();
    };
    ASSERT_TRUE(mounted("size=64k"));
    EXPECT_EQ(112, makeKey());
    ASSERT_EQ(0, mount("none", home_.c_str(), "tmpfs", MS_REMOUNT, "size=1m"));
    EXPECT_EQ(0, makeKey());
    umount(home_.c_str());

    ASSERT_TRUE(mounted("size=" + std::to_string(kNeeded)));
    EXPECT_TRUE(Open("Full").done) << "the limit is where it is said to be";
    umount(home_.c_str());
}

TEST_F(Objects, Without_a_free_descriptor_an_opening_fails_and_says_so) {
    if (kIsSanitized) GTEST_SKIP() << "a sanitizer needs descriptors of its own";
    // The standard streams, the lock file, and one object at a time.
    for (const int limit : {4, 5, 6}) {
        const std::string option = "--nofile=" + std::to_string(limit) + ":" + std::to_string(limit);
        // Whoever runs the tests may have left more open.
        const Opened opened =
            Open("Few", {"/bin/sh", "-c", "exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-; exec \"$@\"", "sh",
                         "/usr/bin/prlimit", option});
        EXPECT_EQ(limit > 4, opened.done) << limit;
        EXPECT_EQ(limit > 4 ? 0 : 4, opened.error) << limit;
    }
}

}  // namespace
