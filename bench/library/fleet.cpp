// Two hundred printers, every setting of each: listed by the client's own command, and the same requests sent
// raw with nothing read from the replies, by as many threads at a time.
#include <kestrel/sdk.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "catalogue/rows.h"
#include "kestrel/command_line.h"
#include "kestrel/fleet/each_printer.h"
#include "library/library.h"
#include "library/printer.h"

namespace {

class ListingClient final : public Client {
  public:
    explicit ListingClient(const Place& place) {
        UseHome(place);
        cli::DeclareCommandLine(line_.Root(), options_, chosen_);
        if (line_.Read({"list", "--json"}) != tools::CommandLine::Outcome::Read)
            throw std::runtime_error("the client has no such command");
        library_ = std::make_unique<cli::Library>(options_.product);
    }

    void Exchange() override {
        each_ = std::make_unique<cli::EachPrinter>();
        const auto list = [this](const std::string& printer) {
            cli::GlobalOptions own = options_;
            own.printers = {{printer}, false};
            own.isOneOfSeveral = true;
            cli::Context context(own);
            return chosen_.work(context);
        };
        reports_ = each_->Do(printers_, options_.jobs, list, [](size_t, const std::string&) {});
    }

    bool IsRight() override {
        each_.reset();
        const auto isWhole = [](const cli::PrinterReport& printer) {
            return !printer.report.failure &&
                   printer.report.data.At("settings").Items().size() == catalogue::Rows().size();
        };
        return reports_.size() == printers_.size() && std::ranges::all_of(reports_, isWhole);
    }

  private:
    std::vector<std::string> printers_ = FleetPrinters();
    tools::CommandLine line_{"", "kestrel"};
    cli::GlobalOptions options_;
    cli::Chosen chosen_;
    std::unique_ptr<cli::Library> library_;
    std::unique_ptr<cli::EachPrinter> each_;
    std::vector<cli::PrinterReport> reports_;
};

class RawClient final : public Client {
  public:
    explicit RawClient(const Place& place) {
        UseHome(place);
        for (const catalogue::Row& row : catalogue::Rows())
            if (row.CanRead() && row.id) requests_.push_back(std::string(row.key) + '?');
    }

    void Exchange() override {
        next_ = 0;
        right_ = 0;
        std::vector<std::jthread> threads;
        for (uint32_t i = 0; i < cli::GlobalOptions().jobs; ++i)
            threads.emplace_back([this] {
                for (size_t mine = next_++; mine < printers_.size(); mine = next_++)
                    right_ += AskAll(printers_[mine]);
            });
    }

    bool IsRight() override { return right_ == printers_.size() * requests_.size(); }

  private:
    size_t AskAll(const std::string& printer) const {
        constexpr size_t kReplyBytes = 256;  // more than the longest value
        if (!SelectPrinter(std::u16string(printer.begin(), printer.end()).c_str())) return 0;
        size_t right = 0;
        for (const std::string& request : requests_) {
            char reply[kReplyBytes];
            uint32_t length = 0;
            right += SendCmd(request.data(), static_cast<uint32_t>(request.size()), reply, sizeof(reply),
                             &length, kTimeoutMs) != 0;
        }
        return right;
    }

    std::vector<std::string> printers_ = FleetPrinters();
    std::vector<std::string> requests_;
    std::atomic<size_t> next_ = 0;
    std::atomic<size_t> right_ = 0;
};

}  // namespace

const Contender kFleetListing = {"fleet",    "list, 200 printers",   "polling", "sleeping",
                                 ServeFleet, Connect<ListingClient>, "f"};
const Contender kFleetRaw = {"fleet-raw", "its requests, raw", "polling", "sleeping",
                             ServeFleet,  Connect<RawClient>,  "f"};
