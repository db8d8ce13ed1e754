// Two tables: the suffixes that tell a module's kind, and how each name is formed from an earlier one.
#include "kwt/object_names.h"

#include <iterator>

namespace kwt {
namespace {

struct Suffix {
    WideView text;
    ModuleKind kind;
};
// In the order of the search.
constexpr Suffix kSuffixes[] = {
    {TEXT("MUI.EXE"), ModuleKind::StatusMonitor},
    {TEXT("MON.DLL"), ModuleKind::LanguageMonitor},
    {TEXT("SDK.DLL"), ModuleKind::Sdk},
};

// A name is an earlier name with a text behind it.
struct Formation {
    ObjectName name;
    ObjectName base;
    WideView ending;
};
constexpr Formation kFormations[] = {
    {ObjectName::StatusMonitorClass, ObjectName::ProductPrefix, TEXT("StatMonClass-01042005")},
    {ObjectName::StatusMonitorStartingMutex, ObjectName::StatusMonitorClass, TEXT("SMStartingMutex")},
    {ObjectName::StatusMonitorRunningEvent, ObjectName::ProductPrefix, TEXT("SMRunningEvent")},
    {ObjectName::LoggingEvent, ObjectName::ProductPrefix, TEXT("LoggingEvent")},
    {ObjectName::PrintPreviewEvent, ObjectName::ProductPrefix, TEXT("PrintPreviewEvent")},
    {ObjectName::LanguageMonitorStartedEvent, ObjectName::ProductPrefix, TEXT("LMStartedEvent")},
    {ObjectName::StatusChannel, ObjectName::StatusMonitorClass, TEXT("StatusChannel")},
    {ObjectName::RemoteControlChannel, ObjectName::StatusMonitorClass, TEXT("RemoteControlChannel")},
    {ObjectName::TerminatorThreadClose, ObjectName::StatusMonitorClass, TEXT("TerminatorThread-Close")},
    {ObjectName::StatusMonitor, ObjectName::ProductPrefix, TEXT("StatusMonitor")},
    {ObjectName::CommandChannelBase, ObjectName::StatusMonitorClass, TEXT("OPLChannel")},
    {ObjectName::HtmlCommunicationLog, ObjectName::ProductPrefix, TEXT("CommLog.html")},
    {ObjectName::LogEnablerEvent, ObjectName::HtmlCommunicationLog, TEXT("-EnablerEvent")},
    {ObjectName::LogEraseEvent, ObjectName::HtmlCommunicationLog, TEXT("-EraseEvent")},
    {ObjectName::TextCommunicationLog, ObjectName::ProductPrefix, TEXT("CommLog.log")},
};
static_assert(std::size(kFormations) + 2 == kObjectNameCount, "all but the prefix and the library's name");

void ReplaceFirst(WideText& text, WideView from, WideView to) {
    const size_t at = text.find(from);
    if (at != WideText::npos) text.replace(at, from.size(), to);
}

}  // namespace

WideView FileNamePart(WideView path) {
    size_t separator = path.rfind(TEXT('\\'));
    if (separator == WideView::npos) separator = path.rfind(TEXT('/'));
    return separator == WideView::npos ? path : path.substr(separator + 1);
}

WideText InCapitals(WideView text) {
    WideText capitals(text);
    for (WCHAR& c : capitals)
        if (c >= TEXT('a') && c <= TEXT('z')) c = static_cast<WCHAR>(c - TEXT('a') + TEXT('A'));
    return capitals;
}

ModuleKind FindModuleKind(WideView capitalFileName) {
    for (const Suffix& suffix : kSuffixes)
        if (capitalFileName.find(suffix.text) != WideView::npos) return suffix.kind;
    return ModuleKind::None;
}

ObjectNameTable& ObjectNameTable::Instance() {
    static ObjectNameTable table;
    return table;
}

bool ObjectNameTable::Build(const WideText& modulePath) {
    const WideView fileName = FileNamePart(modulePath);
    const WideText capitals = InCapitals(fileName);
    if (FindModuleKind(capitals) == ModuleKind::None || fileName.size() == kModuleSuffixLength) return false;

    const auto nameOf = [this](ObjectName name) -> WideText& { return names_[static_cast<size_t>(name)]; };
    WideText& prefix = nameOf(ObjectName::ProductPrefix);
    // The last seven characters go, wherever in the name the suffix was found.
    prefix = fileName.substr(0, fileName.size() - kModuleSuffixLength);
    ReplaceFirst(prefix, TEXT("YOX"), TEXT("YoX"));
    WideText& libraryName = nameOf(ObjectName::ModuleLibraryName);
    libraryName = capitals;
    ReplaceFirst(libraryName, TEXT(".EXE"), TEXT(".DLL"));
    for (const Formation& formation : kFormations) {
        WideText& name = nameOf(formation.name);
        name = nameOf(formation.base);
        name += formation.ending;
    }
    return true;
}

}  // namespace kwt
