// A product that is installed, one printer on port USB001, and its counterpart in a process of its own.
#pragma once

#include <gtest/gtest.h>
#include <kestrel/sdk.h>
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "child_process.h"
#include "kwt/wide_text.h"

inline constexpr uint32_t kLong = 5000;
inline constexpr const kestrel_char* kPrinter = TEXT("P");
inline constexpr const char* kChannelName = "ZRIJ9900StatMonClass-01042005OPLChannelUSB001";

struct CommandResult {
    int code = -1;
    std::string output;
};

// Runs the command-line client to its end.
inline CommandResult RunClient(std::vector<std::string> words, const Environment& environment = {}) {
    words.insert(words.begin(), KESTREL_CLIENT);
    ChildProcess client(words, environment);
    CommandResult result;
    result.output = client.ReadAll();
    result.code = client.Wait();
    return result;
}

// Plain characters as the library takes them.
inline WideText Widened(const std::string& text) {
    return WideText(text.begin(), text.end());
}

template <size_t n>
WideText Text(const kestrel_char (&field)[n]) {
    return WideText(field, std::find(field, field + n, kestrel_char{0}));
}

// A thread has an SDK object of its own; what a test does on a fresh one is not disturbed by another's.
inline void OnFreshThread(const std::function<void()>& body) {
    std::thread(body).join();
}

class InstalledPrinter : public testing::Test {
  protected:
    InstalledPrinter() : home_(std::getenv("KESTREL_TEST_FOLDER")) {
        EXPECT_EQ(0, RunClient({"setup"}).code);
        AddPrinter("P", "USB001");
    }
    ~InstalledPrinter() override {
        printer_.Terminate();
        if (printer_.WasStarted()) {
            EXPECT_EQ(0, printer_.Wait()) << "the virtual printer did not end cleanly";
        }
        for (const std::string& name : added_)
            EXPECT_EQ(0, RunClient({"printers", "remove", name}).code);
    }

    void AddPrinter(const std::string& name, const std::string& port, const std::string& extra = "") {
        std::vector<std::string> words = {"printers", "add", name, "--port", port};
        if (!extra.empty()) words.push_back(extra);
        EXPECT_EQ(0, RunClient(words).code);
        added_.push_back(name);
    }

    // On a fresh thread, with the printer selected.
    static void WithPrinter(const std::function<void()>& body) {
        OnFreshThread([&] {
            ASSERT_TRUE(SelectPrinter(kPrinter)) << GetLastError();
            body();
        });
    }

    // The virtual printer, or one of another word size that the environment names.
    static std::string PrinterProgram() {
        const char* const other = std::getenv("KESTREL_COUNTERPART");
        return other != nullptr ? other : KESTREL_VPRINTER;
    }

    // `faults`: the rules of a fault script; none starts a printer that does everything right.
    void StartPrinter(const std::string& faults = "", const std::vector<std::string>& extra = {}) {
        std::vector<std::string> words = {PrinterProgram(), "--port", "USB001", "--trace", "none"};
        if (!faults.empty()) {
            const std::string file = (home_ / "faults.json").string();
            std::ofstream(file) << faults;
            words.insert(words.end(), {"--faults", file});
        }
        words.insert(words.end(), extra.begin(), extra.end());
        printer_ = ChildProcess(words);
        const std::string ready = printer_.ReadLine().value_or("");
        ASSERT_EQ(0u, ready.find("ready: USB001")) << ready;
    }

    std::filesystem::path home_;
    std::vector<std::string> added_;
    ChildProcess printer_;
};
