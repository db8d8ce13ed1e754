// A new file is put in the place of the old one, so that the printer never reads half of it.
#include "kestrel/testing/fault_switch.h"

#include <fmt/core.h>

#include <filesystem>

#include "kestrel/failure.h"
#include "shared/file.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

fs::path PathWith(const std::string& utf8, std::string_view ending = {}) {
    std::u8string text(utf8.begin(), utf8.end());
    text.append(ending.begin(), ending.end());
    return text;
}

bool Write(const std::string& path, const tools::Json& rules) {
    const std::string text = tools::Json{{"*", {{"faults", rules}}}}.Dump() + '\n';
    return !tools::RewriteFile(PathWith(path), text, tools::Readers::All);
}

}  // namespace

FaultSwitch::FaultSwitch(std::string controlFile, const tools::Json& rules) : path_(std::move(controlFile)) {
    std::error_code ignored;
    fs::remove(PathWith(path_, ".refused"), ignored);
    if (!Write(path_, rules))
        throw ValueFailure(
            fmt::format("the control file {} cannot be written", path_),
            "check its folder and permissions, and that it is the one of kestrel-vprinter --control");
}

FaultSwitch::~FaultSwitch() {
    static_cast<void>(Write(path_, tools::Json::EmptyArray()));
}

std::string FaultSwitch::Refusal() const {
    return tools::ReadFile(PathWith(path_, ".refused")).value_or("");
}

}  // namespace cli
