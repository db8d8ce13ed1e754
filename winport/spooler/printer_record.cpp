#include "winport/spooler/printer_record.h"

#include <string>

namespace winport {

namespace {

struct PrinterText {
    const char16_t* value;
    LPWSTR PRINTER_INFO_2W::*member;
};

constexpr PrinterText kPrinterTexts[] = {
    {u"Name", &PRINTER_INFO_2W::pPrinterName},       {u"Share Name", &PRINTER_INFO_2W::pShareName},
    {u"Port", &PRINTER_INFO_2W::pPortName},          {u"Printer Driver", &PRINTER_INFO_2W::pDriverName},
    {u"Description", &PRINTER_INFO_2W::pComment},    {u"Location", &PRINTER_INFO_2W::pLocation},
    {u"Separator File", &PRINTER_INFO_2W::pSepFile}, {u"Print Processor", &PRINTER_INFO_2W::pPrintProcessor},
    {u"Datatype", &PRINTER_INFO_2W::pDatatype},      {u"Parameters", &PRINTER_INFO_2W::pParameters},
};

struct NumberField {
    const char16_t* value;
    DWORD PRINTER_INFO_2W::*member;
};

constexpr NumberField kNumberFields[] = {
    {u"Attributes", &PRINTER_INFO_2W::Attributes},
    {u"Priority", &PRINTER_INFO_2W::Priority},
    {u"Default Priority", &PRINTER_INFO_2W::DefaultPriority},
    {u"StartTime", &PRINTER_INFO_2W::StartTime},
    {u"UntilTime", &PRINTER_INFO_2W::UntilTime},
};

// A printer written by hand into the registry may lack the value "Name"; its key then names it.
std::u16string PrinterName(RegistrySession& session, KeyId printer) {
    const std::u16string name = ReadText(session, printer, u"Name");
    return name.empty() ? session.Name(printer).value_or(std::u16string()) : name;
}

}  // namespace

PackedRecord<PRINTER_INFO_2W> LoadPrinter(RegistrySession& session, KeyId printer) {
    PackedRecord<PRINTER_INFO_2W> record;
    for (const PrinterText& field : kPrinterTexts) {
        const bool isName = field.member == &PRINTER_INFO_2W::pPrinterName;
        record.texts.push_back(
            {field.member, isName ? PrinterName(session, printer) : ReadText(session, printer, field.value)});
    }
    for (const NumberField& field : kNumberFields) {
        record.info.*field.member = ReadNumber(session, printer, field.value, 0);
    }
    return record;
}

PackedRecord<PRINTER_INFO_1W> LoadPrinterSummary(RegistrySession& session, KeyId printer) {
    const std::u16string name = PrinterName(session, printer);
    std::u16string description = name;
    for (const char16_t* value : {u"Printer Driver", u"Location"}) {
        description.append(u",").append(ReadText(session, printer, value));
    }
    PackedRecord<PRINTER_INFO_1W> record;
    record.info.Flags = PRINTER_ENUM_ICON8;
    record.texts = {{&PRINTER_INFO_1W::pDescription, description},
                    {&PRINTER_INFO_1W::pName, name},
                    {&PRINTER_INFO_1W::pComment, ReadText(session, printer, u"Description")}};
    return record;
}

void SavePrinter(RegistrySession& session, KeyId printer, const PRINTER_INFO_2W& info) {
    for (const PrinterText& field : kPrinterTexts) {
        const LPWSTR text = info.*field.member;
        if (text != nullptr) WriteText(session, printer, field.value, text);
    }
    for (const NumberField& field : kNumberFields)
        WriteNumber(session, printer, field.value, info.*field.member);
}

}  // namespace winport
