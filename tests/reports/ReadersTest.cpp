#include <gtest/gtest.h>

#include <answers/reports/ReportReader.h>

using namespace ostraka::reports;

namespace {

// One line for each record: line of the report, type, kind, counts, and the calls as a person reads them.
class Dump : public RecordTaker {
public:
    void Take(const ReportRecord& record) override {
        text += std::to_string(record.line) + " " + record.type + (record.leak ? " leak " : " ") +
                record.kind + " " + std::to_string(record.count) + "x" + std::to_string(record.bytes);
        Append(record.calls);
        for (const TitledCalls& other : record.others) {
            text += "\n  " + other.title;
            Append(other.calls);
        }
        text += record.IsTooDeep() ? "|...\n" : "\n";
    }
    void Recount(std::uint64_t unique, std::int64_t count) override {
        text += std::to_string(unique) + "=" + std::to_string(count) + "\n";
    }
    std::string text;

private:
    void Append(const CallTexts& calls) {
        for (int i = 0; i < calls.Kept(); ++i) text += "|" + ShownCall(calls[i]);
        if (calls.Told() > calls.Kept()) text += "|of " + std::to_string(calls.Told());
    }
};

std::string DumpOf(const std::string& report, std::size_t pieceSize) {
    Dump dump;
    const auto [form, cause] = Recognise(report);
    if (form == ReportForm::None) return cause + "\n";
    const auto reader = MakeReader(form, dump);
    bool going = true;
    for (std::size_t at = 0; going && at < report.size(); at += pieceSize)
        going = reader->Feed(std::string_view(report).substr(at, pieceSize));
    if (going) reader->End();
    if (const auto& fault = reader->Fault())
        dump.text += "fault " + std::to_string(fault->line) + ":" + std::to_string(fault->column) + " " +
                     fault->cause + "\n";
    return dump.text;
}

std::string Error(const std::string& inside) {
    return "<error>\n<unique>0x1f</unique>" + inside + "</error>\n";
}
std::string Frames(const std::string& inside) {
    return "<stack><frame>" + inside + "</frame></stack>";
}
std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

const std::string inMain =
    "<ip>0x1</ip><obj>/a</obj><fn>main</fn><dir>/w/FwA/M.m/src</dir><file>a.cpp</file><line>9</line>";
const std::string xml = "<?xml version=\"1.0\"?>\n<valgrindoutput>\n";
const std::string end = "</valgrindoutput>\n";

TEST(Readers, HandOnWhatReportsTell) {
    const std::pair<std::string, const char*> rows[] = {
        // Valgrind: the first stack counts, the remark tells what the access met
        {xml +
             Error("<kind>InvalidRead</kind>" + Frames(inMain) +
                   "<auxwhat>Address 0x4d is 0 bytes inside a block of size 8 free'd</auxwhat>" +
                   Frames("<fn>free</fn>") + "<auxwhat>Block was alloc'd at</auxwhat>") +
             "<errorcounts><pair><count>3</count><unique>0x1f</unique></pair></errorcounts>" + end,
         "3 FMR InvalidRead 1x0|main [/w/FwA/M.m/src/a.cpp:9]\n31=3\n"},
        {xml +
             Error("<kind>InvalidWrite</kind><auxwhat>Address 0x8 is not stack'd, malloc'd or (recently) "
                   "free'd</auxwhat>") +
             Error("<kind>InvalidWrite</kind><auxwhat>Address 0x8 is not here</auxwhat>") +
             Error("<kind>InvalidFree</kind>") + Error("<kind>Race</kind>") + end,
         "3 ZPW InvalidWrite 1x0\n5 ZPW InvalidWrite 1x0\n7 FNH InvalidFree 1x0\n9 Race Race 1x0\n"},
        // leaks; calls without a path, without a source, without anything; any bytes
        {xml +
             Error("<kind>Leak_PossiblyLost</kind><xwhat><text>1</text><leakedbytes>40</"
                   "leakedbytes><leakedblocks>2</leakedblocks></xwhat>" +
                   Frames("<fn>operator new[](unsigned "
                          "long)</fn><file>x.c</file><line>1</line></frame><frame><obj>/lib/x.so</obj></"
                          "frame><frame>"
                          "</frame><frame><fn>\xe4\xc3\xa4&lt;&amp;</fn><file>/f.c</file><dir>/d</dir>")) +
             end,
         "3 PLK leak Leak_PossiblyLost 2x40|operator new[](unsigned long) [x.c:1]|??? ["
         "/lib/x.so:]|???|\xe4\xc3\xa4<& [/f.c:]\n"},
        // what is whole before a fault stays
        {xml + Error("<kind>Overlap</kind>") + "<error>\n<kind>Overlap",
         "3 PAR Overlap 1x0\nfault 6:14 no element found; the error that is open here is left out\n"},
        {xml + "<error></kind>", "fault 3:10 mismatched tag; the error that is open here is left out\n"},
        {"<?xml version='1.0'?><html/>", "fault 1:22 is XML, but not Valgrind's\n"},
        {"<?xml version='1.0'?><!DOCTYPE a [<!ENTITY b 'c'>]><a/>",
         "fault 1:34 holds a document type, which a report hasn't\n"},
        {xml + Error("<kind>Overlap</kind><stack>" + Repeated("<frame><fn>f</fn></frame>", 23) + "</stack>") +
             end,
         "3 PAR Overlap 1x0|f|f|f|f|f|f|f|f|f|f|f|f|f|f|f|f|f|f|f|f|of 23|...\n"},
        // frames that are known already, and texts that only look like them
        {xml + Error(Frames(inMain)) + Error(Frames(inMain)) +
             Error("<!-- <stack>\n<frame>" + inMain + "</frame></stack> -->" + Frames(inMain)) +
             Error("<stack><!-- <stack><frame> --><frame>" + inMain +
                   "</frame><frame><!-- </frame> --><fn>g</fn></frame></stack>") +
             "</b>",
         "3 ?  1x0|main [/w/FwA/M.m/src/a.cpp:9]\n5 ?  1x0|main [/w/FwA/M.m/src/a.cpp:9]\n"
         "7 ?  1x0|main [/w/FwA/M.m/src/a.cpp:9]\n10 ?  1x0|main [/w/FwA/M.m/src/a.cpp:9]|g\nfault 12:3 "
         "mismatched tag\n"},
        // sanitizers, inside what a program prints
        {"Hello\n==7==ERROR: AddressSanitizer: heap-buffer-overflow on address 0x60 at pc 0x5\r\nWRITE of "
         "size 4 at 0x60 thread T0\r\n"
         "    #0 0x5 in Foo::operator[](int (&) [3]) /w/a b/c.cpp:9:3\r\n    #1 0x7 in start ../s/l.h:58\n   "
         " #2 0x7 in f() (/l/x.so+0x1f) (BuildId: 3)\n    #3 0x7 (/a+0x1)\n"
         "    #4 0x7 in g(int)\n\n0x60 is located\nallocated by thread T0 here:\n    #0 0x7 in malloc "
         "x.c:1\n\n",
         "2 ABW heap-buffer-overflow 1x0|Foo::operator[](int (&) [3]) [/w/a b/c.cpp:9]|start "
         "[../s/l.h:58]|f() [/l/x.so:]|??? [/a:]|g(int)\n"},
        {"==7==ERROR: LeakSanitizer: detected memory leaks\n\nDirect leak of 32 byte(s) in 2 object(s) "
         "allocated from:\n    #0 0x7 in f a.c:1\n\n"
         "Indirect leak of 8 byte(s) in 1 object(s) allocated from:\n    #0 0x7 in g a.c:2",
         "3 MLK leak Direct leak 2x32|f [a.c:1]\n6 MLK leak Indirect leak 1x8|g [a.c:2]\n"},
        {"==7==ERROR: AddressSanitizer: SEGV on unknown address 0x000000000008 (pc 0x1)\n==7==The signal is "
         "caused by a READ memory access.\n    #0 0x1 in f a.c:1\n"
         "==7==ERROR: AddressSanitizer: attempting free on address which was not malloc()-ed: 0x1\n",
         "1 ZPR SEGV 1x0|f [a.c:1]\n4 FNH attempting free 1x0\n"},
        // undefined behaviour by its place, threads without symbols, and what isn't a call
        {"/w/a b.cpp:3:4: runtime error: left shift of 3 by -4 places cannot be represented in type 'int'\n"
         "(/w/a.out+0x12): runtime error: load of null pointer of type 'int'\n"
         "<unknown>: runtime error: division by zero\nbytes\n    #0 0x1 in f(int) const /w/a.c\n",
         "1 left shift of N by N places left shift of N by N places 1x0|??? in /w/a b.cpp [/w/a b.cpp:3]\n"
         "2 load of null pointer load of null pointer 1x0|??? [/w/a.out:]\n"
         "3 division by zero division by zero 1x0|f(int) const [/w/a.c:]\n"},
        {"WARNING: ThreadSanitizer: heap-use-after-free (virtual call vs free) (pid=3)\n"
         "  Atomic write of size 8 at 0x7b by thread T1 (mutexes: write M1, read M2):\n"
         "    #0 <null> <null> (a.out+0x1) (BuildId: 3)\n    #1 f(int) /w/a b.c:1 (a.out+0x1)\n"
         "  Previous write of size 8 at 0x7b by main thread:\n    [failed to restore the stack]\n\n"
         "  Location is heap block of size 8 at 0x7b allocated by main thread:\n    #0 malloc m.c:1 (l+0x2)\n"
         "Hello\n==================\n    #0 no frame\n"
         "WARNING: ThreadSanitizer: data race on vptr (ctor/dtor vs virtual call) (pid=3)\n  #0 g "
         "(l.so+0x1)\n",
         "1 FMW heap-use-after-free 1x0|??? [a.out:]|f(int) [/w/a b.c:1]\n"
         "  Previous write of size 8 by main thread\n"
         "13 data race on vptr data race on vptr 1x0|??? [g:]\n"},
        {"==3==ERROR: ThreadSanitizer: SEGV on unknown address 0x000000000000 (pc 0x1)\n"
         "    #0 0x1 (<unknown module>)\n    #1 0x2 in f\n",
         "1 NPR SEGV 1x0|???|f\n"},
        // plain lines, with and without a head, a source, a blank before it, an end
        {"MLK 3 120\nfoo[abi:cxx11]() [/w/a.cpp:1]\n  "
         "main\n\n\nUMR\nABC(int)\nFoo[/w/[b]/c.cpp:3]\n[x\nnew[]\noperator[]",
         "1 MLK leak MLK 3x120|foo[abi:cxx11]() [/w/a.cpp:1]|main\n6 UMR UMR "
         "1x0|ABC(int)|Foo[/w/[b]/c.cpp:3]|[x|new[]|operator[]\n"},
        {"Hello, world!\n==12== Memcheck, a memory error detector\n",
         "fault 2:1 is the text of Valgrind, which has to run with --xml=yes\n"},
        {"f\ng\n==12== Memcheck\n", "fault 3:1 is the text of Valgrind, which has to run with --xml=yes\n"},
    };
    for (const auto& [report, expected] : rows) {
        EXPECT_EQ(DumpOf(report, report.size() + 1), expected) << report;
        EXPECT_EQ(DumpOf(report, 1), expected) << report;
    }
}

TEST(Readers, TellWhatIsNoReport) {
    const std::string text = "fault 0:0 is text without a report in it\n";
    const std::pair<std::string, std::string> rows[] = {
        {"\x1f\x8b\x08 MLK 1 2\nf\n", "is packed with gzip, not a report\n"},
        {std::string("\xfd"
                     "7zXZ\0",
                     6),
         "is packed with xz, not a report\n"},
        {"BZh91AY&SY", "is packed with bzip2, not a report\n"},
        {"PK\x03\x04", "is packed with zip, not a report\n"},
        {std::string(257, 'f') + "ustar", "is an archive of tar, not a report\n"},
        {"\x7f"
         "ELF\x02 ==1==ERROR: AddressSanitizer: x\n",
         "is a program or a library, not a report\n"},
        {std::string("\xff\xfeM\0L\0K\0", 8), "is text of 16 bits a character, not a report\n"},
        {std::string("f\0g", 3), "is binary, not a report\n"},
        {std::string("\0\n==1==ERROR: LeakSanitizer: x\n #0 0x1 in f\0 a.c:1", 50), "2 x x 1x0|f? [a.c:1]\n"},
        {"Hello, world!\n", text},
        {"#include <map>\nint f(int a);\nint main() {\n    return f(3);\n}\n", text},
        {"{\"a\": 1}\n", text},
        {"a,b\n1,2\n", text},
        {"<html>\n", text},
        {"3\n", text},
        {"# f\n\n# g\n", text},
        {"make all\n", text},
        {"panic: runtime error: index out of range\n", text},
        {"f\ntwo words\n", text},
        {"f\n\"AddressSanitizer: no head\"\n", text},
        {"a.cpp:1:2: warning: f [-Wall]\n", text},
        // words, and lines of which enough are calls
        {"", ""},
        {" \n\n", ""},
        {"# calls\nf\nnon-virtual thunk to A::~A()\noperator, (A b)\n<lambda()>\nA::b(int) const [clone]\n",
         "1 ? ? 1x0|# calls|f|non-virtual thunk to A::~A()|operator, (A b)|<lambda()>|A::b(int) const "
         "[clone]\n"},
        {"two words\nf [a.c:1]\n", "1 ? ? 1x0|two words|f [a.c:1]\n"},
        {"two words\nMLK 1\ng\n", "1 ? ? 1x0|two words|MLK 1|g\n"},
        {"two words\nand more, too\nf [a.c]\n", text},
        {"f\n" + Repeated("g\n", 1000) + "two words\n",
         "1 ? ? 1x0|f" + Repeated("|g", 19) + "|of 1002|...\n"},
        {Repeated("two words\n", 200000) + "a.c:1:2: runtime error: x y\n",
         "200001 x y x y 1x0|??? in a.c [a.c:1]\n"},
    };
    for (const auto& [report, expected] : rows)
        EXPECT_EQ(DumpOf(report, 100), expected) << report.substr(0, 100);
}

TEST(Readers, TellTheBracketOfTheSource) {
    const std::pair<const char*, const char*> rows[] = {
        {"operator new[](int) [/w/a.cpp:1]", "operator new\x7f](int) [/w/a.cpp:1]"},
        {"f(int (&) [3])", "f(int (&) \x7f"
                           "3])"},
        {"f(int (&) [3]) [", "f(int (&) \x7f"
                             "3]) ["},
        {"operator new[]@", "operator new\x7f]@"},
        {"@ [/w/[x]/@]", "@ [/w/[x]/@]"},
        {"f[a.cpp:1]", "f[\x7f/a.cpp:1]"},
        {"f [@/a.cpp:1]", "f [@/a.cpp:1]"},
        {"f[b:c]", "f\x7f"
                   "b:c]"},
    };
    std::string mask, maskText;
    for (const auto& [written, text] : rows) {
        EXPECT_EQ(CallText(written), text);
        mask += std::string("!") + written;
        maskText += std::string("!") + text;
    }
    EXPECT_EQ(MaskText(mask), maskText);
    EXPECT_EQ(ShownCall(maskText), mask);
    EXPECT_EQ(MaskText(" a ! "), "a!");
    for (const auto& [a, b] :
         {std::pair("f [../a", "f [/a"), {"f [/a", "f [a"}, {"f [a", "f [b"}, {"f", "f [a"}}) {
        const std::string left = CallText(a), right = CallText(b);
        EXPECT_LT(CompareCallTexts(left.c_str(), right.c_str()), 0) << a;
        EXPECT_GT(CompareCallTexts(right.c_str(), left.c_str()), 0) << a;
        EXPECT_EQ(CompareCallTexts(left.c_str(), left.c_str()), 0) << a;
    }
    const std::string hostile = "/" + Repeated("x[a/b:", 200000) + "]";
    EXPECT_EQ(ShownCall(CallText(hostile)), hostile);
}

} // namespace
