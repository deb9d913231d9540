#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/symbols/TAPSymbolTable.h>

namespace {

const std::string sample = OSTRAKA_EXAMPLES "/workspace/";

// All files of the sample, loaded in the order of their paths.
class SampleWorkspace : public testing::Test {
protected:
    void SetUp() override {
        setenv("QxqxOS_VAR", "unix_a", 1);
        table = new TAPSymbolTable;
        table->SetConcatenation((sample + "harbour:" + sample + "coast").c_str());
        std::vector<std::string> paths;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(sample))
            paths.push_back(entry.path());
        std::sort(paths.begin(), paths.end());
        for (const std::string& path : paths) Load(path);
    }
    void TearDown() override { table->Release(); }

    void Load(const std::string& path) {
        int result = 0;
        if (path.ends_with(".idl")) result = table->LoadIdlFile(path.c_str(), 1);
        if (path.ends_with(".h") || path.ends_with(".cpp")) result = table->LoadFile(path.c_str(), 1);
        EXPECT_EQ(result, 0) << path << ": " << table->GetErrMsg().CastToCharPtr();
    }

    TAPSymbolTable* table = nullptr;
};

std::string Describe(const TAPDefClass& known) {
    std::string text =
        std::string(known.name) + " " + std::to_string(known.kind) + " " + known.source->framework;
    if (known.parent != nullptr) text += std::string(" : ") + known.parent;
    for (int i = 1; i <= known.tied.Size(); ++i) text += std::string(" + ") + known.tied[i]->name;
    return text;
}

TEST_F(SampleWorkspace, GivesEachClassItsKindAndItsBase) {
    const char* expected[] = {"Berth 4 Berths : CoastObject + IMooring + IBerth",
                              "Cargo 1 Ships",
                              "CoastLog 1 CoastBase",
                              "CoastObject 1 CoastBase",
                              "CoastRegistry 1 CoastBase",
                              "CoastSlots 1 CoastBase",
                              "IBerth 2 Berths : IMooring",
                              "IMooring 2 Berths",
                              "ITideStation 2 Tides : NUBBaseDispatch",
                              "ITraffic 2 Traffic : NUBBaseDispatch",
                              "IVessel 2 Ships : NUBBaseDispatch",
                              "Mooring 1 Berths",
                              "NUBBaseDispatch 2 CoastBase",
                              "Quay 4 Berths : CoastObject",
                              "Ship 4 Ships : CoastObject + IVessel",
                              "ShipPapers 1 Ships",
                              "SlackBerth 4 Berths : Berth",
                              "TideHarmonics 1 Tides",
                              "TideTable 4 Tides : CoastObject",
                              "TrafficControl 4 Traffic : CoastObject + ITraffic",
                              "TrafficRules 1 Traffic",
                              "Tug 4 Ships : Ship"};
    NUBListValNUBString names;
    table->GetClassNames(names, 7);
    ASSERT_EQ(names.Size(), static_cast<int>(std::size(expected)));
    int i = 0;
    for (const NUBString& name : names)
        EXPECT_EQ(Describe(*table->GetClass(name.CastToCharPtr())), expected[i++]);
}

TEST_F(SampleWorkspace, ShowsEachRuleOfTheHeaderSearch) {
    constexpr const char* rows[][3] = {
        {"harbour/Ships/Ships.m/src/Ship.cpp", "Berth.h", "harbour/Berths/PublicInterfaces/Berth.h"},
        {"harbour/Berths/Berths.m/src/Berth.cpp", "Mooring.h",
         "harbour/Berths/ProtectedInterfaces/Mooring.h"},
        {"harbour/Berths/Berths.m/src/Berth.cpp", "IBerth.h", "harbour/Berths/PublicInterfaces/IBerth.idl"},
        {"coast/Tides/Tides.m/src/TideTable.cpp", "TideLimits.h",
         "harbour/Tides/PublicInterfaces/TideLimits.h"},
        {"coast/Tides/Tides.m/src/TideTable.cpp", "TideCatalog.h",
         "coast/Tides/PublicGenerated/unix_a/TideCatalog.h"},
        {"coast/Tides/PublicInterfaces/TideTable.h", "TideHarmonics.h",
         "coast/Tides/ProtectedGenerated/unix_a/TideHarmonics.h"},
        {"coast/Tides/Tides.m/src/TideTable.cpp", "TideLexer.h",
         "coast/Tides/Tides.m/LocalGenerated/unix_a/TideLexer.h"},
        {"coast/Tides/Tides.m/src/TideTable.cpp", "TideKeys.h",
         "coast/Tides/PrivateGenerated/unix_a/TideKeys.h"},
        {"harbour/Traffic/PrivateInterfaces/TrafficRules.h", "TrafficMessages.h",
         "harbour/Traffic/PrivateGenerated/unix_a/TrafficMessages.h"},
        {"coast/CoastBase/CoastBase.m/src/CoastObject.cpp", "CoastSlots.h",
         "coast/CoastBase/CoastBase.m/LocalInterfaces/CoastSlots.h"},
        {"harbour/Ships/Ships.m/src/Tug.cpp", "ShipPapers.h", "harbour/Ships/PrivateInterfaces/ShipPapers.h"},
        {"harbour/Traffic/Traffic.m/src/TrafficControl.cpp", "ShipPapers.h", ""},
        {"harbour/Traffic/Traffic.m/src/TrafficControl.cpp", "TrafficNotes.h", ""},
        {"coast/CoastBase/PrivateInterfaces/CoastRegistry.h", "CoastSlots.h", ""}};
    for (const auto& [from, header, found] : rows) {
        const TAFileName path = table->SearchHeaderFile((sample + from).c_str(), header);
        EXPECT_EQ(static_cast<const char*>(path), *found != '\0' ? sample + found : "")
            << header << " from " << from;
    }
}

} // namespace
