#include "tests/cli/CliRun.h"

namespace encap::test {
namespace {

std::string Nested(std::size_t levels)
{
    std::string text = "<F>";
    for (std::size_t i = 0; i < levels; ++i) {
        text += "\n<a>";
    }
    for (std::size_t i = 0; i < levels; ++i) {
        text += "</a>";
    }
    return text + "<FamilyTable/></F>";
}

std::string Utf16(const std::string& ascii, bool isBigEndian)
{
    std::string bytes = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char character : ascii) {
        bytes += isBigEndian ? '\0' : character;
        bytes += isBigEndian ? character : '\0';
    }
    return bytes;
}

struct BadFile {
    const char* what;
    std::string bytes;
    const char* part; ///< of the message
};

// Refused as a family and as a strings document alike.
std::vector<BadFile> BadFiles()
{
    const std::string bomb = "<?xml version='1.0'?><!DOCTYPE F [<!ENTITY a 'aaaaaaaaaa'>"
                             "<!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>"
                             "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;'>]>"
                             "<F><FamilyTable a='&c;'>&c;</FamilyTable></F>";
    return {
        {"nothing", "", "the file is empty"},
        {"blanks", " \n\n", "the file is empty"},
        {"a text", "row;d;l\n1;2;3\n", "it is not an XML document"},
        {"not closed", "<F><FamilyTable></F>", "not well-formed XML"},
        {"cut off", "<F><FamilyTable a='", "not"},
        {"two elements", "<F><FamilyTable/></F><F/>", "not well-formed XML"},
        {"an entity bomb", bomb, "document type declaration"},
        {"an external entity",
         "<!DOCTYPE F [<!ENTITY x SYSTEM 'pins.xml'>]><F><FamilyTable>&x;</FamilyTable></F>",
         "document type declaration"},
        {"an unknown entity", "<F><FamilyTable>&x;</FamilyTable></F>", "not well-formed XML"},
        {"100,000 levels", Nested(100000), "nested deeper than 256 levels at line 257"},
        {"257 levels", Nested(257), "nested deeper than 256 levels"},
        {"a Latin-1 byte", "<F>\n<FamilyTable a='\xE4'/></F>",
         "byte 21 (line 2) is no UTF-8 character"},
        {"a zero byte", std::string("<F><FamilyTable/>\0</F>", 22), "byte 18 (line 1)"},
        {"half a UTF-16 character", Utf16("<F><FamilyTable/></F>", false) + '\n',
         "is no UTF-16 character"},
        {"half a UTF-16 pair", Utf16("<F>", true) + "\xD8" + '\0', "byte 9 (line 1)"},
        {"a false UTF-16 declaration",
         "<?xml version='1.0' encoding='UTF-16'?><F><FamilyTable/></F>",
         "it declares UTF-16 but is not written in it"},
        {"an unknown encoding", "<?xml version='1.0' encoding='x-none'?><F><FamilyTable/></F>",
         "in the encoding that it declares (x-none)"},
    };
}

TEST(BadFiles, AreNoFamilies)
{
    const TemporaryFolder folder;
    for (const BadFile& bad : BadFiles()) {
        SCOPED_TRACE(bad.what);
        const std::string path = WriteFile(folder, L"f.xml", bad.bytes);
        for (const char* command : {"table", "info"}) {
            ExpectRefusal(CliRun({command, path}), 3, bad.part);
            ExpectRefusal(CliRun({command, path}), 3, "encap: " + path + ": ");
        }
    }
}

TEST(BadFiles, AreNoStringsDocuments)
{
    const TemporaryFolder folder;
    const std::string family = WriteFile(folder, L"f.xml",
                                         "<F><FamilyStrings><File FullFileName='s.xml'/>"
                                         "</FamilyStrings><FamilyTable/></F>");
    const std::string bare = WriteFile(folder, L"bare.xml", "<F><FamilyTable/></F>");
    for (const BadFile& bad : BadFiles()) {
        SCOPED_TRACE(bad.what);
        const std::string path = WriteFile(folder, L"s.xml", bad.bytes);
        ExpectRefusal(CliRun({"table", family}), 3, bad.part);
        ExpectRefusal(CliRun({"table", bare, "--strings", path}), 3, "encap: " + path + ": ");
    }
}

TEST(BadFiles, DocumentWithoutATableIsNoFamily)
{
    const TemporaryFolder folder;
    for (const char* text :
         {"<F/>", "<F><a><FamilyTable/></a></F>", "<FamilyTable/>", "<F><familytable/></F>"}) {
        const std::string path = WriteFile(folder, L"f.xml", text);
        ExpectRefusal(CliRun({"table", path}), 3, "has no \"FamilyTable\"");
    }
}

TEST(BadFiles, WhatIsNoFileIsTold)
{
    const TemporaryFolder folder;
    ExpectRefusal(CliRun({"table", Utf8(folder.File(L"x.xml"))}), 3, "there is no such file");
    ExpectRefusal(CliRun({"table", Utf8(folder.File(L""))}), 3, "it is a directory");
    ExpectRefusal(CliRun({"table", ""}), 3, "there is no such file");
    ExpectRefusal(CliRun({"table", "\xFF.xml"}), 3, "there is no such file");
}

// Whatever is damaged, the answer is a status of the list, and messages when it is not 0.
TEST(BadFiles, DamagedBytesGiveAStatusAndAMessage)
{
    const TemporaryFolder folder;
    const std::string text = ReadFile(TestData("faults.xml"));
    for (std::size_t at = 0; at < text.size(); at += 29) {
        for (const char byte : {'\xFF', '<', '\0', '"'}) {
            std::string damaged = text;
            damaged[at] = byte;
            const std::string path = WriteFile(folder, L"f.xml", damaged);
            const CliRun run({"table", path, "--format", "csv"});
            EXPECT_TRUE(run.status == 1 || run.status == 3) << at;
            EXPECT_NE("", run.err) << at;
            EXPECT_EQ(run.status == 3, run.out.empty()) << at;
        }
    }
}

} // namespace
} // namespace encap::test
