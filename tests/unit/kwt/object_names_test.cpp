#include "kwt/object_names.h"

#include "kwt/open_security.h"
#include "sections.h"
#include "widened.h"

using namespace kwt;

constexpr const char* kNames = UNIT_TESTS "/kwt/object_names.txt";

TEST(ObjectNames, All_names_are_formed_from_the_file_name) {
    ObjectNameTable table;
    ASSERT_TRUE(table.Build(TEXT("C:\\windows\\system32\\ZRIJ9900SDK.DLL")));
    const std::vector<std::string> names = CasesOf(kNames, "Names of ZRIJ9900 in their order");
    ASSERT_EQ(names.size(), kObjectNameCount);
    for (size_t i = 0; i < kObjectNameCount; ++i)
        EXPECT_EQ(table[static_cast<ObjectName>(i)], Widened(names[i])) << i;
}

TEST(ObjectNames, The_prefix_is_the_file_name_less_seven_characters_and_other_files_are_refused) {
    ForEachCase(kNames, "File of a module -> product prefix and name of its library",
                [](const std::string& path, const std::string& expected) {
                    ObjectNameTable table;
                    if (table.Build(Widened(path))) {
                        const WideText prefix = table[ObjectName::ProductPrefix];
                        EXPECT_EQ(prefix + TEXT(" ") + table[ObjectName::ModuleLibraryName],
                                  Widened(expected));
                    } else {
                        EXPECT_EQ(table[ObjectName::CommandChannelBase], TEXT(""));
                        EXPECT_EQ(expected, "refused");
                    }
                });
}

TEST(ObjectNames, The_kind_of_a_module_follows_the_order_of_the_search) {
    EXPECT_EQ(FindModuleKind(TEXT("ZRSDK.DLL")), ModuleKind::Sdk);
    EXPECT_EQ(FindModuleKind(TEXT("ZRSDK.DLLMON.DLL")), ModuleKind::LanguageMonitor);
    EXPECT_EQ(FindModuleKind(TEXT("SDK.DLLMON.DLLMUI.EXE")), ModuleKind::StatusMonitor);
    EXPECT_EQ(FindModuleKind(TEXT("zrsdk.dll")), ModuleKind::None);
}

TEST(ObjectPaths, A_name_for_all_sessions_has_its_prefix_once_and_none_is_cut) {
    const WideText longest(259, TEXT('n'));
    struct Row {
        WideText name;
        bool global;
        WideText path;  // empty: it does not fit
    };
    const Row rows[] = {{TEXT("Name"), false, TEXT("Name")},
                        {TEXT("Name"), true, TEXT("Global\\Name")},
                        {TEXT("glOBAL\\Name"), true, TEXT("glOBAL\\Name")},
                        {TEXT("Globally"), true, TEXT("Global\\Globally")},
                        {longest, false, longest},
                        {longest.substr(6), true, {}}};
    for (const Row& row : rows) {
        SetLastError(0);
        const ObjectPath path(row.name.c_str(), row.global);
        EXPECT_EQ(!row.path.empty(), path.Fits());
        if (path.Fits())
            EXPECT_EQ(path.Get(), row.path);
        else
            EXPECT_EQ(206u, GetLastError());
    }
    EXPECT_EQ(ObjectPath(nullptr, true).Get(), nullptr);
}
