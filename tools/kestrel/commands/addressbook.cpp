// kestrel addressbook: the printer's fax and e-mail destinations, one record or a whole list at a time.
#include <fmt/core.h>

#include <algorithm>
#include <filesystem>

#include "kestrel/commands/commands.h"
#include "kestrel/printer/address_book.h"
#include "kestrel/text/text.h"
#include "shared/file.h"

namespace cli {
namespace {

struct FileOptions {
    std::string list = "speed-dial";
    std::string file;
};

std::vector<KestrelQuickDial> ReadList(Context& context, const AddressList& list) {
    return ReadAddressList(context.GetPrinter().GetLibrary(), list, context.Options().timeoutMs);
}

void WriteList(Context& context, const AddressList& list, const std::vector<KestrelQuickDial>& records) {
    Demand<kestrel_bool(const KestrelQuickDial*, uint32_t)>(
        context.GetPrinter().GetLibrary(), list.setter,
        {fmt::format("cannot write the {} list", list.name), Exchange::Write, kListOutOfTime}, records.data(),
        ListTimeout(list, context.Options().timeoutMs));
}

Report Show(Context& context, const std::string& only) {
    Report report;
    std::vector<std::vector<std::string>> rows = {{"LIST", "NUMBER", "TYPE", "NAME", "ADDRESS"}};
    for (const AddressList& list : kAddressLists) {
        if (!only.empty() && list.name != only) continue;
        tools::Json& entries = report.data[std::string(list.name)] = EntriesJson(ReadList(context, list));
        for (const tools::Json& entry : entries.Items()) {
            rows.push_back({std::string(list.name), entry.At("number").Dump(), entry.At("type").Text(),
                            ForTerminal(entry.At("name").Text()), ForTerminal(entry.At("address").Text())});
        }
    }
    report.text = rows.size() > 1 ? AlignedTable(rows, context.ResultPaint()) : "the address book is empty\n";
    return report;
}

struct SetRecordOptions {
    std::string list = "speed-dial";
    uint32_t number = 0;
    AddressEntry entry;
};

void WriteRecord(Context& context, const AddressList& list, uint32_t number, const KestrelQuickDial& record) {
    if (list.recordSetter == nullptr) {
        std::vector<KestrelQuickDial> records = ReadList(context, list);
        records[number] = record;
        return WriteList(context, list, records);
    }
    Demand<decltype(SetQuickDialButton)>(context.GetPrinter().GetLibrary(), list.recordSetter,
                                         {fmt::format("cannot write record {}", number)}, number, &record,
                                         context.Options().timeoutMs);
}

Report SetRecord(Context& context, const SetRecordOptions& options) {
    const AddressList& list = FindAddressList(options.list);
    if (options.number >= list.records) {
        throw ValueFailure(fmt::format("the {} list has no record {}", list.name, options.number),
                           fmt::format("choose 0 to {}", list.records - 1));
    }
    WriteRecord(context, list, options.number, RecordFrom(options.entry));
    return {{}, {{"list", list.name}, {"number", options.number}}, {}};
}

Report Export(Context& context, const FileOptions& options) {
    const AddressList& list = FindAddressList(options.list);
    const std::string text = CsvFromRecords(ReadList(context, list));
    if (options.file.empty()) return {text, {{"list", list.name}, {"csv", text}}, {}};

    if (const auto error = tools::RewriteFile(options.file, text)) {
        throw ValueFailure(fmt::format("the file {} cannot be written: {}", options.file, error.message()),
                           "check the folder and the free space");
    }
    return {{}, {{"list", list.name}, {"file", options.file}}, {}};
}

std::string FileContents(const std::string& name) {
    std::optional<std::string> text = tools::ReadFile(name);
    if (!text) throw ValueFailure(fmt::format("the file {} cannot be read", name), "check its name");
    return *std::move(text);
}

// Replaces the list: records that the file does not name become empty.
Report Import(Context& context, const FileOptions& options) {
    const AddressList& list = FindAddressList(options.list);
    const std::vector<KestrelQuickDial> records = RecordsFromCsv(FileContents(options.file), list);
    const auto used = static_cast<size_t>(std::count_if(
        records.begin(), records.end(), [](const KestrelQuickDial& record) { return !IsEmpty(record); }));
    WriteList(context, list, records);
    return {fmt::format("wrote {} records of the {} list\n", used, list.name),
            {{"list", list.name}, {"records", used}},
            {}};
}

void AddListOption(const tools::Command& command, std::string& list) {
    command.AddOption("--list", list, "speed-dial (60 records) or one-touch (5 records)")
        .OneOf({"speed-dial", "one-touch"})
        .TypeName("LIST");
}

void DeclareShow(const tools::Command& book, Chosen& chosen) {
    const tools::Command command = book.AddSubcommand("show", "Print the records in use");
    const auto list = std::make_shared<std::string>();
    AddListOption(command, *list);
    command.Note("Without --list both lists.");
    command.Example("kestrel addressbook show --list one-touch");
    command.OnUse([&chosen, list] {
        chosen = {"addressbook show", [list](Context& context) { return Show(context, *list); },
                  Reach::Several};
    });
}

std::vector<tools::Explained> AddressTypeWords() {
    std::vector<tools::Explained> words;
    words.reserve(kAddressTypes.size());
    for (const std::string_view type : kAddressTypes)
        words.push_back({std::string(type), {}});
    return words;
}

void DeclareSet(const tools::Command& book, Chosen& chosen) {
    const tools::Command command = book.AddSubcommand("set", "Change one record");
    const auto options = std::make_shared<SetRecordOptions>();
    command.AddOption("NUMBER", options->number, "Record, from 0").Required();
    command.AddOption("TYPE", options->entry.type, "What its address is")
        .Required()
        .Explains(AddressTypeWords());
    command.AddOption("NAME", options->entry.name, "Name of the destination");
    command.AddOption("ADDRESS", options->entry.address, "Fax number or e-mail address");
    AddListOption(command, options->list);
    command.Example("kestrel addressbook set 3 fax \"Head office\" 0301234567");
    command.OnUse([&chosen, options] {
        chosen = {"addressbook set", [options](Context& context) { return SetRecord(context, *options); },
                  Reach::Several};
    });
}

void DeclareFiles(const tools::Command& book, Chosen& chosen) {
    const tools::Command exports = book.AddSubcommand("export", "Write a list as comma-separated values");
    const auto out = std::make_shared<FileOptions>();
    exports.AddOption("FILE", out->file, "File to write [standard output]");
    AddListOption(exports, out->list);
    exports.Example("kestrel addressbook export book.csv");
    exports.OnUse([&chosen, out] {
        chosen = {"addressbook export", [out](Context& context) { return Export(context, *out); }};
    });

    const tools::Command imports = book.AddSubcommand("import", "Replace a list by that of a file");
    const auto in = std::make_shared<FileOptions>();
    imports.AddOption("FILE", in->file, "File with lines number,type,name,address").Required();
    AddListOption(imports, in->list);
    imports.Note("Nothing is sent when a line is wrong. Records that the file leaves out become empty.");
    imports.Example("kestrel addressbook import book.csv");
    imports.OnUse([&chosen, in] {
        chosen = {"addressbook import", [in](Context& context) { return Import(context, *in); },
                  Reach::Several};
    });
}

}  // namespace

void AddAddressBook(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("addressbook", "The printer's fax and e-mail destinations");
    command.RequireSubcommand();
    DeclareShow(command, chosen);
    DeclareSet(command, chosen);
    DeclareFiles(command, chosen);
}

}  // namespace cli
