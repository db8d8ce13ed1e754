// A product that is installed, one printer on port USB001, and its counterpart in a process of its own.
#pragma once

#include <gmock/gmock.h>
#include <kestrel/sdk.h>

#include <cstdlib>
#include <sstream>

#include "child_process.h"
#include "precompiled.h"
#include "shared/json.h"
#include "widened.h"

using testing::HasSubstr;
using testing::Not;

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

inline constexpr uint32_t kLong = 5000;
inline constexpr const kestrel_char* kPrinter = TEXT("P");

inline constexpr uint32_t kSendIncomplete = 0xE0000002;
inline constexpr uint32_t kNoReply = 0xE0000003;
inline constexpr uint32_t kBadReply = 0xE0000011;
inline constexpr uint32_t kUnexpectedReply = 0xE0000012;

// How a call of the library ended: a failure by the error it left, which is 0 for some.
inline constexpr uint32_t kDone = 0xFFFFFFFF;
inline uint32_t Ended(kestrel_bool done) {
    return done != 0 ? kDone : GetLastError();
}

using Words = std::vector<std::string>;

// Runs the command-line client to its end.
inline ProgramResult RunClient(Words words, const Words& more = {}) {
    words.insert(words.begin(), KESTREL_CLIENT);
    words.insert(words.end(), more.begin(), more.end());
    return RunProgram(words);
}

template <size_t n>
WideText Text(const kestrel_char (&field)[n]) {
    return WideText(field, std::find(field, field + n, kestrel_char{0}));
}

inline std::string FileText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline size_t Count(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

// A thread has an SDK object of its own; what a test does on a fresh one is not disturbed by another's.
inline void OnFreshThread(const std::function<void()>& body) {
    std::thread(body).join();
}

class InstalledPrinter : public testing::Test {
  protected:
    InstalledPrinter() : home_(std::getenv("KESTREL_TEST_FOLDER")) {
        setup_ = tools::Json::Parse(RunClient({"setup", "--json"}).output);
        AddPrinter("P", "USB001");
    }
    ~InstalledPrinter() override {
        if (printer_.WasStarted()) EndPrinter();
        for (const std::string& name : added_)
            EXPECT_EQ(0, RunClient({"printers", "remove", name}).code);
    }

    void AddPrinter(const std::string& name, const std::string& port, const Words& extra = {}) {
        EXPECT_EQ(0, RunClient({"printers", "add", name, "--port", port}, extra).code);
        added_.push_back(name);
    }

    // On a fresh thread, with the printer selected.
    static void WithPrinter(const std::function<void()>& body) {
        OnFreshThread([&] {
            ASSERT_TRUE(SelectPrinter(kPrinter)) << GetLastError();
            body();
        });
    }

    // `faults`: the rules of a fault script; none starts a printer that does everything right.
    void StartPrinter(const std::string& faults = "[]", const Words& extra = {}) {
        const std::string file = Write("faults.json", faults);
        // The virtual printer, or one of another word size that the environment names.
        const char* const other = std::getenv("KESTREL_COUNTERPART");
        Words words = {other != nullptr ? other : KESTREL_VPRINTER, "--port", "USB001", "--faults", file};
        if (std::ranges::find(extra, "--trace") == extra.end())
            words.insert(words.end(), {"--trace", "none"});
        words.insert(words.end(), extra.begin(), extra.end());
        printer_ = ChildProcess();  // a port has one printer at a time
        printer_ = ChildProcess(words);
        const std::string ready = printer_.ReadLine().value_or("");
        ASSERT_TRUE(ready.starts_with("ready: USB001")) << ready;
    }
    void EndPrinter() {
        printer_.Terminate();
        EXPECT_EQ(0, printer_.Wait()) << "the virtual printer did not end cleanly";
    }
    // Files in the folder of the test.
    [[nodiscard]] std::string Path(const std::string& name) const { return (home_ / name).string(); }
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(home_ / name, std::ios::binary) << text;
        return Path(name);
    }

    std::filesystem::path home_;
    tools::Json setup_;  // what the installation says of itself
    Words added_;
    ChildProcess printer_;
};
