#include "platform.h"

#include <signal.h>
#include <unistd.h>

#include <utility>

namespace cli::platform {
namespace {

// Read by the signal handler: complete before the handler is installed, never changed and never destroyed.
struct LastWords {
    std::string out;
    std::string error;
    int exitStatus;
};
const LastWords* lastWords = nullptr;

void WriteAll(int descriptor, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
        if (count <= 0) return;
        written += static_cast<std::size_t>(count);
    }
}

// Neither buffers are flushed nor destructors run: the thread may hold any lock of the library at this
// moment. The channel is built for clients that end in the middle of an exchange.
void OnInterrupt(int) {
    WriteAll(STDOUT_FILENO, lastWords->out);
    WriteAll(STDERR_FILENO, lastWords->error);
    _exit(lastWords->exitStatus);
}

}  // namespace

std::vector<std::string> Arguments(int count, char** values) {
    return count > 0 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}

bool IsTerminal(Stream stream) {
    return isatty(stream == Stream::kOut ? STDOUT_FILENO : STDERR_FILENO) == 1;
}

void EndOnInterrupt(std::string outText, std::string errorText, int exitStatus) {
    static const LastWords words{std::move(outText), std::move(errorText), exitStatus};
    lastWords = &words;
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

void EndWithoutUnloading(int exitStatus) {
    _exit(exitStatus);
}

}  // namespace cli::platform
