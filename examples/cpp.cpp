// Reads and changes a setting of an installed printer, and shows what a refusal looks like.
//   g++ -std=c++20 cpp.cpp $(pkg-config --cflags --libs zrij9900sdk) -o cpp && ./cpp Office
#include <kestrel/sdk.hpp>

#include <iostream>

namespace {

namespace setting = kestrel::setting;

kestrel::Result<void> change(kestrel::Printer& printer) {
    const auto redials = printer.get<setting::fax_redials>();
    if (!redials) return redials.error();
    const auto mode = printer.get<setting::fax_mode>();
    if (!mode) return mode.error();
    std::cout << "redials: " << int{*redials} << ", fax mode: " << to_string(*mode) << '\n';

    if (auto done = printer.set<setting::fax_mode>(kestrel::FaxMode::FineBlack); !done) return done;
    {
        const auto lock = printer.lock();  // other programs are refused until the end of this block
        if (!lock) return lock.error();
        if (auto done = printer.set<setting::fax_senders_name>("Smith & Sons"); !done) return done;
    }
    return printer.set<setting::fax_redials>(200);
}

}  // namespace

int main(int argc, char** argv) {
    auto printer = kestrel::Printer::select(argc > 1 ? argv[1] : "");
    const auto done = printer ? change(*printer) : printer.error();
    if (done) return 0;
    std::cerr << done.error().message() << '\n';
    return 1;
}
