// A thread is started when there is room for one more, and stays when it is done.
#include "kestrel/fleet/each_printer.h"

#include <system_error>

namespace cli {

EachPrinter::~EachPrinter() {
    {
        const std::lock_guard guard(lock_);
        ends_ = true;
    }
    ended_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

std::vector<PrinterReport> EachPrinter::Do(const std::vector<std::string>& printers, size_t most,
                                           const Work& work, const Step& step) {
    std::vector<PrinterReport> reports;
    reports.reserve(printers.size());  // the threads keep the places
    threads_.reserve(printers.size());
    std::unique_lock guard(lock_);
    const auto workFor = [&](PrinterReport& place) {
        Report report = work(place.printer);
        std::unique_lock here(lock_);
        place.report = std::move(report);
        step(++done_, place.printer);
        --running_;
        progressed_.notify_one();
        ended_.wait(here, [this] { return ends_; });
    };
    for (const std::string& printer : printers) {
        progressed_.wait(guard, [this, most] { return running_ < most; });
        PrinterReport& place = reports.emplace_back(PrinterReport{printer, {}});
        try {
            threads_.emplace_back(workFor, std::ref(place));
            ++running_;
        } catch (const std::system_error&) {
            place.report.failure = Failure{ExitCode::OwnFault,
                                           "the system has no thread for this printer",
                                           "name fewer printers at a time",
                                           {},
                                           {},
                                           {}};
            ++done_;
        }
    }
    progressed_.wait(guard, [this, &printers] { return done_ == printers.size(); });
    return reports;
}

}  // namespace cli
