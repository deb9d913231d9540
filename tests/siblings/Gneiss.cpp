#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include <gtest/gtest.h>

#include <gneiss/qxContext.h>
#include <gneiss/qxErrorCodeManager.h>
#include <gneiss/qxMMap.h>
#include <gneiss/qxOFStream.h>

namespace {

class FileMapping : public testing::Test {
protected:
    FileMapping() { std::filesystem::create_directory(folder); }
    ~FileMapping() override { std::filesystem::remove_all(folder); }

    // The result of reading the file, which frees its block; "failed" otherwise.
    static std::string Read(const char* path, int mode = 8) {
        char* data = nullptr;
        unsigned int size = 0;
        if (qxMMap(path, mode, data, size, 10) != 0) {
            EXPECT_TRUE(data == nullptr && size == 0);
            return "failed";
        }
        std::string content(data, size);
        EXPECT_EQ(data[size], '\0');
        for (std::size_t i = size + 1; mode > 0 && i % static_cast<std::size_t>(mode) != 0; ++i)
            EXPECT_EQ(data[i], '\n');
        std::free(data);
        return content;
    }

    const std::string folder = testing::TempDir() + "mapping" + std::to_string(getpid());
    const std::string file = folder + "/file";
};

TEST_F(FileMapping, GivesTheWholeContent) {
    for (std::size_t length : {0, 1, 7, 8, 4095, 4096, 100'000}) {
        std::string content(length, 'x');
        if (length > 3) content[3] = '\0';
        std::ofstream(file, std::ios::binary) << content;
        for (int mode : {8, 1, 0, -5, 4096}) EXPECT_EQ(Read(file.c_str(), mode), content) << length;
    }
}

TEST_F(FileMapping, ReadsWhatTellsNoSize) {
    std::ifstream maps("/proc/self/limits");
    EXPECT_EQ(Read("/proc/self/limits"), std::string(std::istreambuf_iterator<char>(maps), {}));
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    const std::string content(300'000, 'p');
    std::thread writer([&] { std::ofstream(file) << content; });
    EXPECT_EQ(Read(file.c_str()), content);
    writer.join();
}

TEST_F(FileMapping, FailureLeavesTheReason) {
    std::ofstream(file).close();
    std::filesystem::resize_file(file, 1ull << 31);
    for (auto [path, error] :
         {std::pair(folder, EISDIR), {file, EFBIG}, {folder + "/none", ENOENT}, {"", ENOENT}}) {
        EXPECT_EQ(Read(path.c_str()), "failed") << path;
        EXPECT_STREQ(qxExtLastError.GetMsgError().CastToCharPtr(), std::strerror(error)) << path;
    }
    EXPECT_EQ(Read(nullptr), "failed");
}

TEST(Messages, ParametersStandInTheText) {
    qxMsgManager* messages = qxExtContext.GetMsgMngr();
    EXPECT_STREQ(messages->GetMsg("TAparser.ImbParenthese", "a%b.h").CastToCharPtr(),
                 "unbalanced parentheses in a%b.h");
    EXPECT_STREQ(messages->GetMsg("TAparser.ImbBracket", "x").CastToCharPtr(),
                 messages->GetMsg("TAparser.ImbBracket").CastToCharPtr());
    EXPECT_STREQ(messages->GetMsg("TAparser.Other", "x").CastToCharPtr(), "TAparser.Other");
    for (const char* key : {"TAparser.InvIdlArg", "TAparser.InvNubIdlArg"})
        EXPECT_NE(std::strstr(messages->GetMsg(key, ": by long x ").CastToCharPtr(), ": by long x "),
                  nullptr);
}

// Both streams end up in one file here, where the lines have to stand in the order of the calls. Both kinds
// of endl are in sight, and each stream takes its own.
TEST(ConsoleDeathTest, LinesKeepTheirOrder) {
    const auto speak = [] {
        using namespace std;
        dup2(STDERR_FILENO, STDOUT_FILENO);
        qxTraceManager* traces = qxExtContext.GetTraceMngr();
        std::fputs("1 ", stdout);
        traces->Print(MSG_KEY_qxqxError, stderr, "two");
        qxStdout << "3 " << static_cast<const char*>(nullptr);
        qxStderr << "4" << endl;
        traces->Print(MSG_KEY_systError, stderr, "five", NUBUnicodeString("six"));
        traces->Print(MSG_KEY_systError, nullptr, "unheard");
        cout << "seven" << endl << std::endl;
        std::_Exit(0);
    };
    EXPECT_EXIT(speak(), testing::ExitedWithCode(0), "^1 error: two\n3 4\nerror: five: six\nseven\n\n$");
}

// A sink keeps what is meant for standard error, the inner one while it is there, and nothing else.
TEST(Traces, GoToTheInnermostSink) {
    struct Sink final : qxTraceSink {
        std::string heard;
        void Receive(const qxKeyForTraceManager& key, const NUBUnicodeString& text) override {
            heard += std::string(&key == &MSG_KEY_systError ? "system " : "") + text.CastToCharPtr() + "|";
        }
    } outer, inner;
    qxTraceManager& traces = *qxExtContext.GetTraceMngr();
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    {
        const qxTraceSinkGuard keeping(traces, &outer);
        traces.Print(MSG_KEY_qxqxError, stderr, "a", "b");
        traces.Print(MSG_KEY_qxqxError, stdout, "elsewhere");
        traces.Print(MSG_KEY_qxqxError, nullptr, "unheard");
        {
            const qxTraceSinkGuard deeper(traces, &inner);
            traces.Print(MSG_KEY_systError, stderr, "c");
        }
        traces.Print(MSG_KEY_qxqxError, stderr, "d");
    }
    traces.Print(MSG_KEY_qxqxError, stderr, "printed");
    EXPECT_EQ(outer.heard, "a: b|d|");
    EXPECT_EQ(inner.heard, "system c|");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "error: elsewhere\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: printed\n");
    EXPECT_EQ(traces.SetSink(nullptr), nullptr);
}

} // namespace
