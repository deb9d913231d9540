#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/foundation/Fatal.h>
#include <ostraka/foundation/TACallback.h>
#include <ostraka/foundation/TAFileBuffer.h>
#include <ostraka/foundation/TARefCounter.h>

namespace {

TEST(FatalDeathTest, TellsMessageAndStack) {
    FATAL(0, "nothing happens");
    EXPECT_EXIT(FATAL(-1, "the reason"), testing::KilledBySignal(SIGABRT),
                "^FATAL INTERNAL ERROR -{24}\nthe reason\nSTACK -{39}\n");
    const auto shared = [] { dup2(STDERR_FILENO, STDOUT_FILENO), FATAL(1, nullptr); };
    EXPECT_DEATH(shared(), "STACK -+\n.*\\(.*\\)");
}

class Counted : public TARefCounter {
public:
    explicit Counted(int& seen) : countAtDeath(seen) {}
    ~Counted() override { countAtDeath = count; }

private:
    int& countAtDeath;
};

TEST(TARefCounter, LastReleaseDestroys) {
    int countAtDeath = 0;
    auto* object = new Counted(countAtDeath);
    object->AddRef();
    object->Release();
    EXPECT_EQ(countAtDeath, 0);
    object->Release();
    EXPECT_EQ(countAtDeath, 1);
    const Counted onStack(countAtDeath);
}

TEST(TARefCounterDeathTest, CatchesMiscounting) {
    const auto destroyShared = [] {
        TARefCounter object;
        object.AddRef();
    };
    EXPECT_DEATH(destroyShared(), "Delete on references object");
    const auto releaseDead = [] {
        alignas(TARefCounter) unsigned char memory[sizeof(TARefCounter)];
        TARefCounter* volatile object = new (memory) TARefCounter;
        object->~TARefCounter();
        object->Release();
    };
    // The second text is that of a sanitizer, which comes first where there is one.
    EXPECT_DEATH(releaseDead(), "Too many release on object number |does not point to an object");
}

TEST(TAFileBuffer, ReadsOnFirstDemandOnly) {
    const std::string path = testing::TempDir() + "buffer" + std::to_string(getpid());
    std::ofstream(path) << "text";
    TAFileBuffer buffer(path.c_str(), 0);
    EXPECT_EQ(buffer.GetSize(), 4u);
    std::filesystem::remove(path);
    EXPECT_STREQ(buffer.GetBuffer(), "text");
    EXPECT_EQ(buffer.fileName, path);
}

TEST(TAFileBuffer, FailureIsReportedOnce) {
    TAFileBuffer buffer("/no/such/file", 1);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(buffer.LoadFile() == 1 && buffer.LoadFile() == 0);
    EXPECT_TRUE(buffer.GetBuffer() == nullptr && buffer.GetSize() == 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: /no/such/file: No such file or directory\n");
}

// A text in memory is what a file of that content would be, down to what a scanner sees behind it.
TEST(TAFileBuffer, TextStandsForAFile) {
    using namespace std::string_literals;
    const std::string path = testing::TempDir() + "text" + std::to_string(getpid());
    for (const std::string& text : {""s, "a"s, "a\0b"s, "sevenup"s, "eight bytes and more"s}) {
        std::ofstream(path) << text;
        TAFileBuffer read(path.c_str(), 0);
        std::string given = text;
        TAFileBuffer held(path.c_str(), given);
        std::fill(given.begin(), given.end(), '?');
        EXPECT_EQ(held.loaded, 1);
        ASSERT_EQ(held.size, text.size());
        const std::string behind(held.GetBuffer() + held.size, 8);
        EXPECT_EQ(behind, '\0' + std::string(7, '\n'));
        EXPECT_EQ(std::memcmp(held.buffer, read.GetBuffer(), held.size / 8 * 8 + 8), 0) << text;
        EXPECT_EQ(held.fileName, path);
    }
    std::filesystem::remove(path);
    testing::internal::CaptureStderr();
    TAFileBuffer huge("huge.cpp", std::string_view("", std::size_t{1} << 31));
    EXPECT_TRUE(huge.GetBuffer() == nullptr && huge.GetSize() == 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: huge.cpp: File too large\n");
}

class Listener final : public TACallbackSubscriber {
public:
    explicit Listener(char letter) : name(letter) {}
    int ReceiveCallback(TACallbackPublisher* publisher, int code, void* data1, void* data2) override {
        static_cast<std::string*>(data1)->push_back(name);
        EXPECT_TRUE(code == 1 && data2 == publisher);
        if (name == 'l') publisher->RemoveSubscriber(this);
        if (brought) publisher->AddSubscriber(std::exchange(brought, nullptr));
        return 7;
    }

    char name;
    Listener* brought = nullptr;
};

TEST(TACallback, ListMayChangeDuringTheCall) {
    Listener plain('p'), leaving('l'), bringing('b');
    bringing.brought = &plain;
    const std::tuple<std::vector<Listener*>, std::string> rows[] = {
        {{&plain, &leaving, &plain, &leaving, &bringing}, "plbp"},
        {{&plain, &plain}, "pp"},
        {{&leaving}, "l"},
    };
    TACallbackPublisher publisher;
    EXPECT_EQ(publisher.SendCallback(1, nullptr, nullptr), 1);
    for (const auto& [subscribers, calls] : rows) {
        std::string heard;
        for (Listener* subscriber : subscribers) publisher.AddSubscriber(subscriber);
        EXPECT_EQ(publisher.SendCallback(1, &heard, &publisher), 0);
        EXPECT_EQ(heard, calls);
        for (Listener* subscriber : {&leaving, &bringing, &plain}) publisher.RemoveSubscriber(subscriber);
        EXPECT_EQ(publisher.SendCallback(1, nullptr, nullptr), 1);
    }
}

} // namespace
