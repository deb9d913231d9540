#include <chrono>
#include <filesystem>
#include <string>
#include <support/TemporaryFolder.h>
#include <sys/resource.h>
#include <thread>

#include <gtest/gtest.h>

#include <ostraka/foundation/FolderMemory.h>

using ostraka::detail::FolderMemory;

namespace {

TEST(FolderMemory, RulesOutOnlyWhatTheSystemWouldNotFind) {
    const TemporaryFolder folder;
    folder.Add("in/Held.h");
    folder.Add("in/sub/x.h");
    FolderMemory memory(FolderMemory::noWait);
    struct Row {
        const char* name;
        bool mayBeThere;
    };
    for (const Row& row :
         {Row{"Held.h", true}, Row{"none.h", false}, Row{"hELD.H", true}, Row{"sub/none.h", true},
          Row{"none/x.h", false}, Row{"//sub\\x.h", true}, Row{"/none.h", false}, Row{"../none.h", true},
          Row{"./none.h", true}, Row{"none.h.", true}, Row{"no ne.h", true}, Row{"none~1.h", true},
          Row{"n\xc3\xb6ne.h", true}, Row{"none-1_2+.hxx", false}, Row{"", true}}) {
        EXPECT_EQ(memory.At("in").MayHold(row.name), row.mayBeThere) << row.name;
        EXPECT_FALSE(memory.At("absent").MayHold(row.name)) << row.name;
        EXPECT_FALSE(memory.At("in/Held.h").MayHold(row.name)) << row.name;
    }
}

TEST(FolderMemory, RulesOutNothingInFoldersThatItCannotList) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("in");
    std::filesystem::create_symlink("around", "around");
    FolderMemory memory(FolderMemory::noWait);
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_TRUE(memory.At("in").MayHold("none.h"));
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_TRUE(memory.At("around").MayHold("none.h"));
    EXPECT_TRUE(memory.At(std::string(10000, 'd')).MayHold("none.h"));
    memory.BeginRound();
    EXPECT_FALSE(memory.At("in").MayHold("none.h"));
    EXPECT_TRUE(FolderMemory().At("in").MayHold("none.h")) << "it has changed a moment ago";
}

TEST(FolderMemory, SeesChangesInTheNextRound) {
    const TemporaryFolder folder;
    folder.Add("in/there.h");
    FolderMemory memory(FolderMemory::noWait);
    const auto holds = [&] {
        return std::to_string(memory.At("in").MayHold("there.h")) +
               std::to_string(memory.At("in").MayHold("new.h")) +
               std::to_string(memory.At("later").MayHold("new.h"));
    };
    EXPECT_EQ(holds(), "100");
    std::this_thread::sleep_for(
        std::chrono::milliseconds(50)); // longer than the system's clock takes to move
    folder.Add("in/new.h");
    folder.Add("later/new.h");
    std::filesystem::remove("in/there.h");
    EXPECT_EQ(holds(), "100");
    memory.BeginRound();
    EXPECT_EQ(holds(), "011");
    std::filesystem::remove_all("in");
    std::filesystem::rename("later", "in");
    EXPECT_EQ(holds(), "011");
    memory.Forget(FolderMemory::noWait);
    EXPECT_EQ(holds(), "010");
}

} // namespace
