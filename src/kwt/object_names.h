// The names of the product's kernel objects and files, all formed from the library's own file name, so that
// every module of the product arrives at the same ones.
#pragma once

#include <array>
#include <cstddef>

#include "kwt/wide_text.h"

namespace kwt {

enum class ObjectName : size_t {
    ProductPrefix,
    StatusMonitorClass,
    StatusMonitorStartingMutex,
    StatusMonitorRunningEvent,
    LoggingEvent,
    PrintPreviewEvent,
    LanguageMonitorStartedEvent,
    StatusChannel,
    RemoteControlChannel,
    TerminatorThreadClose,
    StatusMonitor,
    CommandChannelBase,
    ModuleLibraryName,
    HtmlCommunicationLog,
    LogEnablerEvent,
    LogEraseEvent,
    TextCommunicationLog,
};

inline constexpr size_t kObjectNameCount = 17;

/// Written once while the module is loaded, read-only afterwards; no lock is needed to read it.
class ObjectNameTable final {
  public:
    /// The table of this module; its texts are empty until Build has succeeded.
    static ObjectNameTable& Instance();

    /// Forms all names from a module's full path. False, with the texts left empty, when the file name holds
    /// none of "MUI.EXE", "MON.DLL", "SDK.DLL" or nothing but such a suffix.
    [[nodiscard]] bool Build(const WideText& modulePath);

    [[nodiscard]] const WideText& operator[](ObjectName name) const {
        return names_[static_cast<size_t>(name)];
    }

  private:
    std::array<WideText, kObjectNameCount> names_;
};

/// The part of a path after its last "\", or after its last "/" when it has no "\".
[[nodiscard]] WideView FileNamePart(WideView path);

/// The letters a to z in capitals; everything else as it is.
[[nodiscard]] WideText InCapitals(WideView text);

/// The module kinds whose file names carry the product prefix.
enum class ModuleKind { None, StatusMonitor, LanguageMonitor, Sdk };

/// Looks for the module suffixes anywhere in a file name that is in capitals already.
[[nodiscard]] ModuleKind FindModuleKind(WideView capitalFileName);

/// "MUI.EXE", "MON.DLL" and "SDK.DLL" are all this long.
inline constexpr size_t kModuleSuffixLength = 7;

}  // namespace kwt
