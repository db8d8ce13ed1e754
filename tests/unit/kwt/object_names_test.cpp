#include "kwt/object_names.h"

#include <gtest/gtest.h>

#include <array>
#include <iterator>

using namespace kwt;

namespace {

// Other modules form the same names on their own: a letter that changes here breaks the meeting.
constexpr const WCHAR* kNamesOfZrij9900[] = {
    TEXT("ZRIJ9900"),
    TEXT("ZRIJ9900StatMonClass-01042005"),
    TEXT("ZRIJ9900StatMonClass-01042005SMStartingMutex"),
    TEXT("ZRIJ9900SMRunningEvent"),
    TEXT("ZRIJ9900LoggingEvent"),
    TEXT("ZRIJ9900PrintPreviewEvent"),
    TEXT("ZRIJ9900LMStartedEvent"),
    TEXT("ZRIJ9900StatMonClass-01042005StatusChannel"),
    TEXT("ZRIJ9900StatMonClass-01042005RemoteControlChannel"),
    TEXT("ZRIJ9900StatMonClass-01042005TerminatorThread-Close"),
    TEXT("ZRIJ9900StatusMonitor"),
    TEXT("ZRIJ9900StatMonClass-01042005OPLChannel"),
    TEXT("ZRIJ9900SDK.DLL"),
    TEXT("ZRIJ9900CommLog.html"),
    TEXT("ZRIJ9900CommLog.html-EnablerEvent"),
    TEXT("ZRIJ9900CommLog.html-EraseEvent"),
    TEXT("ZRIJ9900CommLog.log"),
};

}  // namespace

TEST(ObjectNames, All_names_are_formed_from_the_file_name) {
    static_assert(std::size(kNamesOfZrij9900) == kObjectNameCount);
    ObjectNameTable table;
    ASSERT_TRUE(table.Build(TEXT("C:\\windows\\system32\\ZRIJ9900SDK.DLL")));
    for (size_t i = 0; i < kObjectNameCount; ++i)
        EXPECT_EQ(table[static_cast<ObjectName>(i)], kNamesOfZrij9900[i]) << i;
}

TEST(ObjectNames, The_prefix_is_the_file_name_less_seven_characters) {
    constexpr std::array<const WCHAR*, 3> kCases[] = {
        {TEXT("C:\\drivers\\zrij9900sdk.dll"), TEXT("zrij9900"), TEXT("ZRIJ9900SDK.DLL")},
        {TEXT("/opt/SDK.DLL/ZRSDK.dll"), TEXT("ZR"), TEXT("ZRSDK.DLL")},
        {TEXT("C:\\a/ZRSDK.DLL"), TEXT("a/ZR"), TEXT("A/ZRSDK.DLL")},
        {TEXT("ZRmui.Exe"), TEXT("ZR"), TEXT("ZRMUI.DLL")},
        {TEXT("ZRYOXSDK.DLL"), TEXT("ZRYoX"), TEXT("ZRYOXSDK.DLL")},
        {TEXT("YOXYOXSDK.DLL"), TEXT("YoXYOX"), TEXT("YOXYOXSDK.DLL")},
        {TEXT("yoxSDK.DLL"), TEXT("yox"), TEXT("YOXSDK.DLL")},
        {TEXT("ZRSDK.DLL.backup"), TEXT("ZRSDK.DLL"), TEXT("ZRSDK.DLL.BACKUP")},
        {TEXT("A.exeMUI.EXE"), TEXT("A.exe"), TEXT("A.DLLMUI.EXE")},
    };
    for (const auto& [path, prefix, libraryName] : kCases) {
        ObjectNameTable table;
        EXPECT_TRUE(table.Build(path));
        EXPECT_EQ(table[ObjectName::ProductPrefix], prefix);
        EXPECT_EQ(table[ObjectName::ModuleLibraryName], libraryName);
    }
}

TEST(ObjectNames, A_file_that_is_no_module_of_a_product_is_refused) {
    for (const WCHAR* path : {TEXT(""), TEXT("SDK.DLL"), TEXT("C:\\ZR\\mon.dll"), TEXT("foo.dll"),
                              TEXT("C:\\ZRSDK.DLL\\foo.dll"), TEXT("ZRSDK.EXE")}) {
        ObjectNameTable table;
        EXPECT_FALSE(table.Build(path));
        EXPECT_EQ(table[ObjectName::CommandChannelBase], TEXT(""));
    }
}

TEST(ObjectNames, The_kind_of_a_module_follows_the_order_of_the_search) {
    EXPECT_EQ(FindModuleKind(TEXT("ZRSDK.DLL")), ModuleKind::Sdk);
    EXPECT_EQ(FindModuleKind(TEXT("ZRSDK.DLLMON.DLL")), ModuleKind::LanguageMonitor);
    EXPECT_EQ(FindModuleKind(TEXT("SDK.DLLMON.DLLMUI.EXE")), ModuleKind::StatusMonitor);
    EXPECT_EQ(FindModuleKind(TEXT("zrsdk.dll")), ModuleKind::None);
}
