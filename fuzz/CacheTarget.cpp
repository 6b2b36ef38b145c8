#include "encap/platform/Files.h"
#include "encap/table/ValueCacheStore.h"
#include "fuzz/FamilyReading.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"
#include "tests/platform/TemporaryFolder.h"

#include <fstream>

namespace encap::fuzz {
namespace {

constexpr const wchar_t* kFamily =
    L"<F><FamilyTable><Columns><Column ColumnId='A' ValueType='string'/>"
    L"<Column ColumnId='B' ValueType='string' ColumnwideValue='{A}'/></Columns>"
    L"<Rows><Row RowId='r1'><Cell ColumnId='A'>a</Cell></Row><Row RowId='r2'/></Rows>"
    L"</FamilyTable></F>";

/// Reads the folder's file and writes what was read; the bytes of the file then.
std::string Rewritten(const CString& folder, const CString& path)
{
    ValueCacheStore store(folder.c_str());
    store.MarkChanged();
    store.Save({L"A", L"B"}, [](const CString&) { return true; });
    std::string bytes;
    return platform::ReadWholeFile(path, bytes) ? bytes : std::string();
}

} // namespace

void RunCache(std::string_view input)
{
    static const TemporaryFolder folder;
    static const CString path = ValueCacheStore(folder.File(L"").c_str()).FilePath();
    std::ofstream(folder.Native() / folder.Native(path).filename(), std::ios::binary)
        .write(input.data(), static_cast<std::streamsize>(input.size()));
    // The first writing leaves out what stands for nothing.
    const std::string first = Rewritten(folder.File(L""), path);
    const std::string second = Rewritten(folder.File(L""), path);
    Require(Rewritten(folder.File(L""), path) == second,
            "a file that was written is read as it was meant");
    Require(second.size() <= first.size(), "reading adds nothing");

    CEncapFamily family(kFamily, {L"<S xml:lang='en'/>"}, folder.File(L"").c_str(), nullptr, false);
    const CString said = ReadEverything(family);
    Require(ReadEverything(family) == said, "a second reading says the same");
}

} // namespace encap::fuzz
