// How a command's results and failures reach people and scripts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrel/failure.h"
#include "shared/json.h"

namespace cli {

// What a command has to say. A failure may stand beside results: those had before it are shown all the same.
struct Report final {
    std::string text;                               // for people, with its line ends
    tools::Json data = tools::Json::EmptyObject();  // fields of the JSON document
    std::optional<Failure> failure;
    bool gaveUp = false;  // a request of its own may lie unread in the channel
    bool isTold = false;  // the command has written its results itself, as they came
    // Without a failure: what the command ends with, such as the end of a program that it ran.
    int exitStatus = 0;
};

// What one of several printers said.
struct PrinterReport final {
    std::string printer;
    Report report;
};

enum class Colour { Bold, Dim, Red };

// Marks a text for a terminal, or leaves it alone.
class Paint final {
  public:
    explicit Paint(bool enabled) : enabled_(enabled) {}
    [[nodiscard]] std::string operator()(Colour colour, std::string_view text) const;

  private:
    bool enabled_;
};

// Whether people have not asked to be spared colours (--no-color, NO_COLOR).
[[nodiscard]] bool AreColoursWanted(bool noColour);
// Colours are for terminals, and for people who have not asked to be spared (--no-color, NO_COLOR).
[[nodiscard]] Paint PaintForResults(bool noColour);
[[nodiscard]] Paint PaintForErrors(bool noColour);

// Lines of aligned columns; the first row is the heading. The last column is not padded.
[[nodiscard]] std::string AlignedTable(const std::vector<std::vector<std::string>>& rows, const Paint& paint);

[[nodiscard]] tools::Json FailureJson(const Failure& failure);

// The document of --json: version, command, exit code, the command's fields, the error if there is one.
[[nodiscard]] std::string JsonDocument(std::string_view command, const Report& report);

// The same for several printers: a list of what each would have in a document of its own.
[[nodiscard]] std::string JsonDocument(std::string_view command, const std::vector<PrinterReport>& reports);

// The error for people: text, code, the reply that was judged bad, advice.
[[nodiscard]] std::string FailureText(const Failure& failure, const Paint& paint);

// Results to standard output, the failure to standard error (or both in one document); returns the exit
// status.
int Print(std::string_view command, const Report& report, bool json, bool noColour);
// For several printers, each under its name. The exit status is that of the first one that failed; of none,
// that of the first that has something to tell by it. What none of them was asked, because it was wrong for
// all, is said once.
int Print(std::string_view command, const std::vector<PrinterReport>& reports, bool json, bool noColour);

}  // namespace cli
