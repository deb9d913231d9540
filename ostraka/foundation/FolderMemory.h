#pragma once

// Which names a folder holds, told from a listing of it instead of asking the system for each name.
//
// Work goes in rounds. A folder is looked at when it is first asked for in a round, and listed if it has
// changed since it was listed last; to the end of the round its listing then stands for it, and what comes or
// goes isn't seen. The system tells changes by a time of limited fineness, so a folder that has changed a
// moment ago isn't listed: any name may be in it.

#include <chrono>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include <ostraka/Export.h>

namespace ostraka::detail {

class OSTRAKA_EXPORT FolderMemory {
public:
    class Folder {
    public:
        // False only if no file of that name is in the folder. Of a name with slashes the first part counts.
        bool MayHold(std::string_view name) const;

    private:
        friend class FolderMemory;
        enum class State { Absent, Listed, Unlisted };
        // Device, inode and the time of the last change, which nobody can set.
        using Version = std::tuple<dev_t, ino_t, std::chrono::nanoseconds>;

        void Look(const char* path, std::chrono::nanoseconds most);
        void List(const char* path);

        State state = State::Unlisted;
        unsigned round = 0; // of the last look
        Version version;
        std::unordered_set<std::string> names; // in small letters: not every file system tells them apart
    };

    // How long a folder has to be as it is before it is listed. Who sees one round only needn't wait.
    static constexpr std::chrono::nanoseconds untilSettled = std::chrono::nanoseconds::max();
    static constexpr std::chrono::nanoseconds noWait = std::chrono::nanoseconds::min();
    explicit FolderMemory(std::chrono::nanoseconds waitAtMost = untilSettled) : longestWait(waitAtMost) {}

    // The folder at the path as it was in this round; good until Forget.
    const Folder& At(const std::string& path);

    void BeginRound() { ++round; }
    unsigned Round() const { return round; }

    // Begins a round in which nothing is known.
    void Forget(std::chrono::nanoseconds waitAtMost);

private:
    std::chrono::nanoseconds longestWait;
    unsigned round = 1;
    std::unordered_map<std::string, Folder> folders;
};

} // namespace ostraka::detail
