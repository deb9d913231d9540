#include <filesystem>

#include <gtest/gtest.h>

#include <ostraka/symbols/HeaderTrace.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "support/Workspace.h"

namespace {

struct Search {
    const char* from;
    const char* header;
    const char* found; // relative to the workspace; empty where there is none
};

void ExpectAll(const TAPSymbolTable& table, const Workspace& files, std::initializer_list<Search> searches) {
    for (const Search& search : searches) {
        const TAFileName path = table.SearchHeaderFile(files(search.from).c_str(), search.header);
        const std::string expected = *search.found != '\0' ? files(search.found) : "";
        EXPECT_EQ(static_cast<const char*>(path), expected) << search.header << " from " << search.from;
        const ostraka::HeaderTrace trace = table.TraceHeaderFile(files(search.from).c_str(), search.header);
        EXPECT_EQ(static_cast<const char*>(trace.file), expected) << search.header << " from " << search.from;
    }
}

TEST(HeaderSearch, FollowsItsOrder) {
    const Workspace files{{"one/FwA/PublicInterfaces/Both.h", ""},
                          {"one/FwB/ProtectedInterfaces/Both.h", ""},
                          {"one/FwB/ProtectedInterfaces/Twice.h", ""},
                          {"one/FwB/ProtectedInterfaces/Twin.idl", ""},
                          {"one/FwA/PublicGenerated/unix_a/Twin.h", ""},
                          {"one/FwA/ProtectedGenerated/unix_a/Made.h", ""},
                          {"one/FwA/PublicGenerated/unix_b/Other.h", ""},
                          {"one/FwA/PrivateInterfaces/Private.h", ""},
                          {"one/FwA/PrivateGenerated/unix_a/PrivateMade.h", ""},
                          {"one/FwA/PrivateInterfaces/Made.h", ""},
                          {"one/FwA/Mod.m/LocalInterfaces/Local.h", ""},
                          {"one/FwA/Mod.m/LocalInterfaces/sub/Local.h", ""},
                          {"one/FwA/Mod.m/LocalGenerated/unix_a/LocalMade.h", ""},
                          {"one/FwA/Mod.m/src/Beside.h", ""},
                          {"two/FwC/PublicInterfaces/Twice.h", ""}};
    const char* source = "one/FwA/Mod.m/src/a.cpp";
    auto* table = new TAPSymbolTable;
    ExpectAll(*table, files,
              {{source, "Both.h", ""}, {source, "Private.h", "one/FwA/PrivateInterfaces/Private.h"}});

    table->SetConcatenation((files("one") + "::" + files("none") + ":" + files("two") + "/").c_str());
    EXPECT_EQ(table->concatenation.Size(), 3);
    ExpectAll(*table, files,
              {{source, "Both.h", "one/FwA/PublicInterfaces/Both.h"},
               {source, "Twice.h", "one/FwB/ProtectedInterfaces/Twice.h"},
               {source, "Twin.h", "one/FwB/ProtectedInterfaces/Twin.idl"},
               {source, "Twin.hxx.h", "one/FwB/ProtectedInterfaces/Twin.idl"},
               {source, "Made.h", "one/FwA/ProtectedGenerated/unix_a/Made.h"},
               {source, "Other.h", ""},
               {source, "Local.h", "one/FwA/Mod.m/LocalInterfaces/Local.h"},
               {source, "sub/Local.h", "one/FwA/Mod.m/LocalInterfaces/sub/Local.h"},
               {source, "LocalMade.h", "one/FwA/Mod.m/LocalGenerated/unix_a/LocalMade.h"},
               {source, "PrivateMade.h", "one/FwA/PrivateGenerated/unix_a/PrivateMade.h"},
               {"one/FwA/PublicInterfaces/Both.h", "Private.h", "one/FwA/PrivateInterfaces/Private.h"},
               {source, "Beside.h", ""}});
    EXPECT_EQ(table->SearchHeaderFile("src/a.cpp", "Private.h").IsNull(), 1);

    // A new list replaces the old one, and an empty one leaves nothing.
    table->SetConcatenation(files("two").c_str());
    ExpectAll(*table, files,
              {{source, "Twice.h", "two/FwC/PublicInterfaces/Twice.h"},
               {source, "Both.h", ""},
               {source, "Made.h", "one/FwA/PrivateInterfaces/Made.h"}});
    table->SetConcatenation("");
    EXPECT_EQ(table->headers.size + table->generatedHeaders.size + table->concatenation.Size(), 0);
    table->Release();
}

TEST(HeaderSearch, TellsItsPlaces) {
    const Workspace files{{"one/FwA/PublicInterfacesPublicInterfaces/a.h", ""},
                          {"one/FwA/ProtectedInterfaces/a.h", ""},
                          {"one/FwA/PublicInterfaces/twin.idl", ""},
                          {"one/FwA/PublicInterfaces/Local.h", ""},
                          {"one/FwA/PrivateInterfaces/sub/a.h", ""},
                          {"one/FwA/Mod.m/LocalGenerated/unix_a/made.hxx", ""},
                          {"two/FwB/PublicInterfaces/a.h", ""},
                          {"two/FwB/ProtectedGenerated/unix_a/twin.h", ""},
                          {"two/FwB/ProtectedGenerated/unix_a/made.h", ""}};
    struct Row {
        const char* header;
        const char* found; // the place, without the folder of the workspaces
        std::size_t places;
    };
    const Row rows[] = {
        {"a.h", "0 ./one ./one/* ProtectedInterfaces a.h", 24},
        {"twin.h", "1 ./one ./one/* PublicInterfaces twin.idl", 24},
        {"twin.idl", "0 ./one ./one/* PublicInterfaces twin.idl", 12},
        {"made.h", "2 ROOT/tw* ROOT/tw*/* ProtectedGenerated/unix_a made.h", 24},
        {"made.hxx", "3  ROOT/one/FwA/Mod.m LocalGenerated/unix_a made.hxx", 12},
        {"sub/a.h", "3  ROOT/one/FwA PrivateInterfaces sub/a.h", 6},
        {"none.h", "", 24},
    };
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(files.root);
    TAPSymbolTable table;
    table.SetConcatenation(("./one:" + files("tw*") + ":one").c_str());
    std::filesystem::current_path(before);
    for (const Row& row : rows) {
        const ostraka::HeaderTrace trace =
            table.TraceHeaderFile(files("one/FwA/Mod.m/src/a.cpp").c_str(), row.header);
        std::string found;
        if (trace.found >= 0) {
            const ostraka::HeaderPlace& place = trace.places[static_cast<std::size_t>(trace.found)];
            found = std::to_string(static_cast<int>(place.rule)) + " " + place.root + " " + place.folder +
                    " " + place.directory + " " + place.name;
        }
        for (std::size_t at; (at = found.find(files.root)) != std::string::npos;)
            found.replace(at, files.root.size(), "ROOT");
        EXPECT_EQ(found, row.found) << row.header;
        EXPECT_EQ(trace.places.size(), row.places) << row.header;
        EXPECT_EQ(trace.file.IsNull(), trace.found < 0) << row.header;
    }
}

} // namespace
