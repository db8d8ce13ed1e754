#include "kestrel/fleet/change.h"

namespace cli {
namespace {

void SetAndVerify(const Printer& printer, const catalogue::Row& row, const Value& value) {
    printer.Set(row, value);
    printer.Verify(row, value);
}

// In a row; then the printer is not asked for the rest, which would each cost a time-out.
constexpr int kMostSilences = 2;

// The last one first. One that cannot be put back keeps nobody from the others, unless the printer is silent.
void PutBack(const Printer& printer, ChangeResult& result, size_t touched) {
    std::string stays;
    int silences = result.failure->exit == ExitCode::NoAnswer ? 1 : 0;
    while (touched-- > 0) {
        const SettingChange& change = result.changes[touched];
        try {
            if (silences < kMostSilences) {
                SetAndVerify(printer, *change.row, change.old);
                silences = 0;
                result.putBack.push_back(change.row);
                continue;
            }
        } catch (const Failure& failure) {
            silences = failure.exit == ExitCode::NoAnswer ? silences + 1 : 0;
        }
        stays += (stays.empty() ? "" : ", ") + std::string(change.row->name);
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
