#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <answers/resolve/IncludeGraph.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "support/Workspace.h"

namespace {

using namespace ostraka::answers;

// Two workspaces with frameworks, and a folder that has none.
const Workspace& Files() {
    static const Workspace files = {
        {"front/Ui/IdentityCard/card", ""},
        {"front/Ui/PublicInterfaces/Limits.h", ""},
        {"front/Ui/Ui.m/src/Ui.cpp", "#include \"IView.h\"\n#include \"Helper.h\"\n#include \"Limits.h\"\n"},
        {"front/Ui/Ui.m/src/Helper.h", ""},
        {"front/Ui/Ui.m/LocalInterfaces/Limits.h", ""},
        {"back/Core/IdentityCard/card", ""},
        {"back/Core/PublicInterfaces/Limits.h", "#include <vector>\n"},
        {"back/Core/PublicInterfaces/IView.idl", "#include \"IBase.idl\"\n"},
        {"back/Core/ProtectedInterfaces/IBase.idl", ""},
        {"back/Core/Core.m/src/Core.cpp", "#include \"Limits.h\"\n"},
        {"plain/src/Limits.h", "#include \"main.h\"\n"},
        {"plain/src/main.h", "#include \"Limits.h\"\n#include \"gone.h\"\n"},
        {"plain/src/main.cpp", "int a;\n  #  include <main.h> // \n/*\n#include \"Limits.h\"\n*/\n"},
        {"plain/test/main.cpp", "#include \"../src/main.h\"\n#include <src/main.h>\n#include \"Limits.h\"\n"},
        {"plain/test/gone/gone.txt", ""},
    };
    return files;
}

struct Asked {
    explicit Asked(const std::vector<std::string>& roots) : base(SettingsFor(roots)) {}

    std::string NameOf(int file) const {
        return file < 0 ? "" : base.PathOf(file).substr(Files().root.size() + 1);
    }
    int FileAt(const char* path) { return base.FileAt(Files()(path)); }

    CodeBaseSettings SettingsFor(const std::vector<std::string>& roots) {
        CodeBaseSettings settings;
        std::string list;
        for (const std::string& root : roots) {
            settings.roots.push_back(Files()(root));
            list += (list.empty() ? "" : ":") + settings.roots.back();
        }
        table->SetConcatenation(list.c_str());
        settings.frameworks = [this] { return table; };
        return settings;
    }

    TAPSymbolTable* table = (Files(), new TAPSymbolTable);
    CodeBase base;

    ~Asked() { table->Release(); }
};

// Where frameworks are their search comes first, and the others follow it.
TEST(IncludeSearch, AsksFrameworksFirst) {
    struct Row {
        const char* from;
        const char* name;
        const char* found;
        IncludeRule rule;
    };
    const Row rows[] = {
        {"back/Core/Core.m/src/Core.cpp", "Limits.h", "front/Ui/PublicInterfaces/Limits.h",
         IncludeRule::Framework},
        {"front/Ui/Ui.m/src/Ui.cpp", "IView.h", "back/Core/PublicInterfaces/IView.idl",
         IncludeRule::Framework},
        {"front/Ui/Ui.m/src/Ui.cpp", "Helper.h", "front/Ui/Ui.m/src/Helper.h", IncludeRule::Beside},
        {"back/Core/Core.m/src/Core.cpp", "Helper.h", "front/Ui/Ui.m/src/Helper.h", IncludeRule::Ending},
        {"plain/test/main.cpp", "Limits.h", "plain/src/Limits.h", IncludeRule::Ending},
        {"plain/src/main.cpp", "Limits.h", "plain/src/Limits.h", IncludeRule::Beside},
        {"elsewhere/main.cpp", "IView.h", "back/Core/PublicInterfaces/IView.idl", IncludeRule::Framework},
    };
    Asked asked({"front", "back", "plain"});
    for (const Row& row : rows) {
        IncludeRule rule = IncludeRule::None;
        const int found = asked.base.FindInclude(asked.FileAt(row.from), row.name, '"', &rule);
        EXPECT_EQ(asked.NameOf(found), row.found) << row.name << " in " << row.from;
        EXPECT_EQ(rule, row.rule) << row.name << " in " << row.from;
    }
}

// What is found, what it hides, where it was looked for, and what else is called so.
TEST(IncludeSearch, TellsAllPlaces) {
    struct Row {
        const char* name;
        std::string told;
    };
    const Row rows[] = {
        {"Limits.h", "beside plain/src/Limits.h, ending back/Core/PublicInterfaces/Limits.h, "
                     "at plain/src/Limits.h, at plain/**/Limits.h, at back/**/Limits.h"},
        {"src/main.h", "ending plain/src/main.h, at plain/src/src/main.h, at plain/**/src/main.h, "
                       "at back/**/src/main.h"},
        {"none/main.cpp", "at plain/src/none/main.cpp, at plain/**/none/main.cpp, at back/**/none/main.cpp, "
                          "like plain/test/main.cpp"},
    };
    Asked asked({"plain", "back"});
    for (const Row& row : rows) {
        const IncludeTrace trace = asked.base.TraceInclude(asked.FileAt("plain/src/main.cpp"), row.name, '"');
        std::string told;
        const auto add = [&](const std::string& text) { told += (told.empty() ? "" : ", ") + text; };
        for (const IncludeCandidate& each : trace.files)
            add(std::string(NameOf(each.rule)) + " " + asked.NameOf(each.file));
        for (const auto& [rule, path] : trace.places) add("at " + path.substr(Files().root.size() + 1));
        for (const int file : trace.alike) add("like " + asked.NameOf(file));
        EXPECT_EQ(told, row.told);
    }
}

TEST(IncludeSearch, FollowsIncludes) {
    Asked asked({"plain"});
    std::string told;
    for (const IncludedFile& file : FollowIncludes(asked.base, asked.FileAt("plain/test/main.cpp"))) {
        told += file.path.substr(Files().root.size() + 1) + (file.isRead ? ":" : " not read:");
        for (const Include& include : file.includes)
            told += " " + include.name + "@" + std::to_string(include.place.line) + ":" +
                    std::to_string(include.place.column) + "=" + std::to_string(include.target);
        told += "\n";
    }
    EXPECT_EQ(told, "plain/test/main.cpp: ../src/main.h@1:11=1 src/main.h@2:11=1 Limits.h@3:11=2\n"
                    "plain/src/main.h: Limits.h@1:11=2 gone.h@2:11=-1\n"
                    "plain/src/Limits.h: main.h@1:11=1\n");
}

// Each file once, by the shortest way; a circle ends, and the file itself isn't among them.
TEST(IncludeSearch, FindsWhoIncludes) {
    struct Row {
        std::vector<std::string> roots;
        const char* file;
        std::string told;
    };
    const Row rows[] = {
        {{"plain"},
         "plain/src/Limits.h",
         "1 plain/src/main.h:1:11 beside plain/src/Limits.h, 1 plain/test/main.cpp:3:11 ending "
         "plain/src/Limits.h, "
         "2 plain/src/main.cpp:2:15 ending plain/src/main.h"},
        {{"front", "back"},
         "back/Core/ProtectedInterfaces/IBase.idl",
         "1 back/Core/PublicInterfaces/IView.idl:1:11 framework back/Core/ProtectedInterfaces/IBase.idl, "
         "2 front/Ui/Ui.m/src/Ui.cpp:1:11 framework back/Core/PublicInterfaces/IView.idl"},
        {{"front", "back"}, "back/Core/PublicInterfaces/Limits.h", ""},
    };
    for (const Row& row : rows) {
        Asked asked(row.roots);
        std::string told;
        for (const Includer& each : FindIncluders(asked.base, asked.FileAt(row.file)).files)
            told += (told.empty() ? "" : ", ") + std::to_string(each.distance) + " " +
                    asked.NameOf(each.file) + ":" + std::to_string(each.place.line) + ":" +
                    std::to_string(each.place.column) + " " + std::string(NameOf(each.rule)) + " " +
                    asked.NameOf(each.includes);
        EXPECT_EQ(told, row.told) << row.file;
    }
}

// The nearest of many that are called alike, with a look that doesn't go over them all.
TEST(PathEndings, ChoosesTheNearest) {
    const std::vector<std::string_view> paths = {"/a/b/c/x.h",   "/a/b/x.h", "/a/d/e/f/x.h",
                                                 "/a/d/g/h/x.h", "/a/yx.h",  "/x.h"};
    struct Row {
        const char* name;
        const char* from;
        int passedOver;
        int nearest;
    };
    const Row rows[] = {
        {"x.h", "/a/b/c/main", -1, 0}, {"x.h", "/a/b/q/main", -1, 1}, {"x.h", "/a/d/main", -1, 2},
        {"x.h", "/a/main", -1, 1},     {"x.h", "/main", -1, 5},       {"x.h", "/a/b/c/x.h", 0, 1},
        {"x.h", "/a/d/e/f/x.h", 2, 3}, {"b/x.h", "/main", -1, 1},     {"h/x.h", "/q/r/main", -1, 3},
        {"g/h/x.h", "/a/main", 3, -1}, {"y.h", "/a/main", -1, -1},    {"/x.h", "/a/main", -1, -1},
    };
    PathEndings endings(paths);
    for (const Row& row : rows)
        EXPECT_EQ(endings.Nearest(row.name, row.from, row.passedOver), row.nearest)
            << row.name << " from " << row.from;
    EXPECT_EQ(endings.EndingWith("x.h"), std::vector<int>({0, 1, 2, 3, 5}));
}

} // namespace
