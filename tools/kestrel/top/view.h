// What `kestrel top` shows, as lines for a terminal of any size.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "kestrel/metrics/printer_watch.h"
#include "top/screen.h"

namespace cli {

enum class TopOrder { Name, Trouble, Ink, Rate };
enum class TopFilter { All, Trouble };

// One printer as it was seen last.
struct TopPrinter final {
    metrics::Snapshot seen;
    double rate = 0;        // answers a second, of this program's own questions
    std::string lastError;  // also of a printer that answers again
};

// Whether somebody has to see to it: silent, not ready, or with an ink that is not enough.
[[nodiscard]] bool IsInTrouble(const TopPrinter& printer);

class TopView final {
  public:
    void Take(std::vector<TopPrinter> printers);
    // What a key does to the view; Quit, Interrupt and Resized are the caller's.
    void Press(top::Key key);
    // Never wider or higher than the terminal. The last line tells the keys.
    [[nodiscard]] std::vector<top::Line> Draw(top::Size size, const std::string& time);

  private:
    [[nodiscard]] std::vector<const TopPrinter*> Shown() const;
    [[nodiscard]] std::vector<top::Line> DrawList(const std::vector<const TopPrinter*>& shown,
                                                  top::Size size);
    [[nodiscard]] static std::vector<top::Line> DrawDetails(const TopPrinter& printer, top::Size size);

    std::vector<TopPrinter> printers_;
    TopOrder order_ = TopOrder::Name;
    TopFilter filter_ = TopFilter::All;
    bool showsDetails_ = false;
    std::string chosen_;  // the printer's name, which stays chosen when the order changes
    size_t first_ = 0;    // the first one on the screen
};

}  // namespace cli
