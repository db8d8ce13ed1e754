#include "kestrel/fleet/change.h"

#include <fmt/core.h>

namespace cli {
namespace {

void SetAndVerify(const Printer& printer, const catalogue::Row& row, const Value& value) {
    printer.Set(row, value);
    const Value kept = printer.Get(row);
    if (kept == value) return;
    const std::string shown =
        row.IsSecret() ? "another value" : fmt::format("\"{}\"", FormatValue(row, kept));
    throw ValueFailure(fmt::format("the printer acknowledged {} and kept {}", row.name, shown),
                       "choose a value that the printer supports");
}

// The last one first. One that cannot be put back keeps nobody from the others.
void PutBack(const Printer& printer, ChangeResult& result, size_t touched) {
    std::string stays;
    while (touched-- > 0) {
        const SettingChange& change = result.changes[touched];
        try {
            SetAndVerify(printer, *change.row, change.old);
            result.putBack.push_back(change.row);
        } catch (const Failure&) {
            stays += (stays.empty() ? "" : ", ") + std::string(change.row->name);
        }
    }
    if (!stays.empty()) result.failure->text += "; could not be put back: " + stays;
}

}  // namespace

ChangeResult BringToState(const Printer& printer, const std::vector<WantedSetting>& wanted,
                          const ChangeOptions& options) {
    ChangeResult result;
    try {
        for (const WantedSetting& setting : wanted) {
            const Value now = printer.Get(*setting.row);
            if (now == setting.value)
                ++result.same;
            else
                result.changes.push_back({setting.row, now, setting.value});
        }
    } catch (const Failure& failure) {
        result.failure = failure;
        result.changes.clear();  // none of them is made
        return result;
    }
    if (options.isDry) {
        result.done = result.changes.size();
        return result;
    }
    for (const SettingChange& change : result.changes) {
        try {
            SetAndVerify(printer, *change.row, change.wanted);
            ++result.done;
        } catch (const Failure& failure) {
            result.failure = failure;
            // Also the one that failed: it may have come half the way.
            if (options.rollsBack) PutBack(printer, result, result.done + 1);
            break;
        }
    }
    return result;
}

}  // namespace cli
