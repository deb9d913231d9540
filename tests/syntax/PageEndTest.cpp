#include <cstring>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/Source.h"

namespace {

// Memory behind which nothing can be read.
class Page {
public:
    Page() {
        memory = static_cast<char*>(
            mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(memory + size, size, PROT_NONE);
    }
    ~Page() { munmap(memory, 2 * size); }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    // The text with its NUL as the last bytes that can be read.
    char* Put(std::string_view text) {
        char* place = memory + size - text.size() - 1;
        std::memcpy(place, text.data(), text.size());
        place[text.size()] = 0;
        return place;
    }

private:
    std::size_t size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    char* memory;
};

// Words are compared without regard to the end of a node, but never behind the stream's NUL.
TEST(PageEnd, NoWordIsReadBehindTheStream) {
    constexpr std::string_view words[] = {"ExportedByX enum ",
                                          "static ",
                                          "virtual ",
                                          "inline ",
                                          "struct ",
                                          "typedef ",
                                          "class ExportedBy ",
                                          "interface ",
                                          "switch(",
                                          "return(",
                                          "else{",
                                          "delete[",
                                          "new ",
                                          "SEQUENCE(a",
                                          "protected:",
                                          "NUBEndTry",
                                          "a<<=b->*c",
                                          "a---b.*c",
                                          "a::b",
                                          "\"ab\\\"c",
                                          "'\\''"};
    Page page;
    auto* file = new TAPSourceFile("page.cpp");
    for (std::string_view word : words) {
        for (std::size_t length = 1; length <= word.size(); ++length) {
            const std::string text = "zz;" + std::string(word.substr(0, length));
            file->stream = page.Put(text);
            file->size = static_cast<int>(text.size());
            for (int begin = 0; begin < file->size; ++begin) {
                auto* root = new TAPSyntaxe(STYPE_File, file, begin, file->size - begin, -1);
                root->Build();
                NUBListValNUBString pieces;
                root->GetListOfString(pieces);
                EXPECT_EQ(root->EndWith(text.c_str() + begin), 1);
                root->Release();
                int found = 0;
                TAPExpression::SearchOperator(file->stream, begin, file->size - 1, found);
                TAPExpression::SearchOperator_old(file->stream, begin, file->size - 1, found);
            }
        }
    }
    file->stream = nullptr; // the page's, not the file's
    file->size = 0;
    file->Release();
}

} // namespace
