#include "encap/platform/Files.h"
#include "encap/platform/Locale.h"
#include "encap/table/ValueCacheStore.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/AllocationPeak.h"
#include "tests/support/FakeProvider.h"
#include "tests/support/FamilyBuilder.h"
#include "tests/support/ProcessorTime.h"
#include "tests/support/Sanitized.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace encap::test {
namespace {

constexpr double kMostSeconds = kSanitized ? 1.0 : 0.1;
constexpr std::size_t kMostMemory = std::size_t{50} << 20U;

struct Entry {
    CString row;
    uint16_t column;
    uint16_t language;
    CString value;
    std::size_t end = 0; ///< in the file
};

/// Puts a file together as docs/formats/value-cache.md has it, and keeps where its counts and the
/// lengths of its texts stand.
class FileWriter {
public:
    void Number(uint32_t value, int width)
    {
        m_counts.emplace_back(bytes.size(), width);
        for (int i = 0; i < width; ++i) {
            bytes += static_cast<char>((value >> (8 * i)) & 0xFFU);
        }
    }
    void Text(const CString& text)
    {
        bytes += "\xFF\xFE\xFF";
        m_lengths.push_back(bytes.size());
        bytes += static_cast<char>(text.size());
        for (const wchar_t character : text) {
            bytes += static_cast<char>(character & 0xFF);
            bytes += static_cast<char>(character >> 8);
        }
    }
    void Texts(const std::vector<CString>& texts)
    {
        Number(static_cast<uint32_t>(texts.size()), 2);
        for (const CString& text : texts) {
            Text(text);
        }
    }
    /// The file with one number or length made absurd, in each way that there is.
    [[nodiscard]] std::vector<std::pair<std::size_t, std::string>> Absurd() const
    {
        std::vector<std::pair<std::size_t, std::string>> files;
        for (const auto& [at, width] : m_counts) {
            for (const std::string number :
                 {"\xFF\xFF\xFF\x7F", "\xFE\xFF\xFF\x00", "\xFF\xFF\xFF\xFF"}) {
                std::string file = bytes;
                const auto count = static_cast<std::size_t>(width);
                file.replace(at, count, number.substr(0, count));
                files.emplace_back(at, file);
            }
        }
        for (const std::size_t at : m_lengths) {
            for (const std::string length : {"\xFF\xFD\xFF", "\xFF\xFF\xFF\xFF\xFF\xFF\xFF",
                                             "\xFF\xFF\xFF\xFE\xFF\xFF\x7F", "\xFE"}) {
                std::string file = bytes;
                files.emplace_back(at, file.replace(at, 1, length));
            }
        }
        return files;
    }

    std::string bytes;

private:
    std::vector<std::pair<std::size_t, int>> m_counts;
    std::vector<std::size_t> m_lengths;
};

class CacheFileDamage : public ::testing::Test {
protected:
    CacheFileDamage()
        : locale(L'.', 4711), folder(),
          path(folder.Native(L"TableCache_4711.dat")), entries{{L"r", 0, 1, L"3"},
                                                               {L"r", 1, 1, L"6"},
                                                               {L"r", 0, 0, L"drei"},
                                                               {L"s", 0, 1, L"4"},
                                                               {L"s", 1, 1, L"8"},
                                                               {L"s", 2, 1, L"caf\x00E9 \x4E2D"}}
    {
        file.Number(1, 4);
        file.Texts(columns);
        file.Texts(languages);
        file.Number(2, 4);
        WriteRow(L"r", {{1, 0}, {2}});
        WriteRow(L"s", {{3, 4, 5}});
    }
    /// Entries by language; written in the order of their places in the list of each language.
    void WriteRow(const CString& id, const std::vector<std::vector<std::size_t>>& byLanguage)
    {
        file.Text(id);
        file.Number(static_cast<uint32_t>(byLanguage.size()), 4);
        for (const auto& places : byLanguage) {
            file.Number(entries[places.front()].language, 2);
            file.Number(static_cast<uint32_t>(places.size()), 4);
            for (const std::size_t place : places) {
                file.Number(entries[place].column, 2);
                file.Text(entries[place].value);
                entries[place].end = file.bytes.size();
            }
        }
    }
    void Put(const std::string& bytes) const
    {
        std::ofstream(path, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    /// Opens the file and gives the store, within the bounds of time and memory.
    [[nodiscard]] std::unique_ptr<ValueCacheStore> Open(const std::string& bytes) const
    {
        Put(bytes);
        const AllocationPeak memory;
        const ProcessorTime time;
        auto store = std::make_unique<ValueCacheStore>(folder.File(L"").c_str());
        EXPECT_LT(time.Seconds(), kMostSeconds);
        EXPECT_LT(memory.Bytes(), kMostMemory);
        EXPECT_FALSE(store->IsChanged());
        return store;
    }
    [[nodiscard]] int Get(ValueCacheStore& store, const Entry& entry, CString& value) const
    {
        return store.Get(entry.row, store.FindColumn(columns[entry.column]),
                         languages[entry.language], value);
    }
    /// Every entry that ends before the damage is there, with its value.
    void ExpectServed(ValueCacheStore& store, std::size_t damage) const
    {
        for (const Entry& entry : entries) {
            CString value;
            if (entry.end <= damage) {
                EXPECT_EQ(Get(store, entry, value), 0) << entry.end;
                EXPECT_EQ(value, entry.value);
            }
        }
    }

    platform::ScopedUserLocale locale;
    TemporaryFolder folder;
    std::filesystem::path path;
    std::vector<CString> columns{L"W", L"X", L"T"};
    std::vector<CString> languages{L"de", L"en"};
    std::vector<Entry> entries;
    FileWriter file;
};

TEST_F(CacheFileDamage, TheWholeFileIsServedAndIsWhatIsWritten)
{
    const auto store = Open(file.bytes);
    ExpectServed(*store, file.bytes.size());
    store->MarkChanged();
    store->Save(columns, [](const CString&) { return true; });
    std::string written;
    ASSERT_TRUE(platform::ReadWholeFile(folder.File(L"TableCache_4711.dat"), written));
    EXPECT_EQ(written.size(), file.bytes.size()) << "the same entries, sorted";
    ExpectServed(*Open(written), file.bytes.size());
}

TEST_F(CacheFileDamage, OfEveryPrefixTheWholeEntriesAreServedAndNothingElse)
{
    for (std::size_t length = 0; length < file.bytes.size(); ++length) {
        SCOPED_TRACE(length);
        const auto store = Open(file.bytes.substr(0, length));
        ExpectServed(*store, length);
        for (const Entry& entry : entries) {
            CString value;
            EXPECT_TRUE(entry.end <= length || Get(*store, entry, value) == 1);
        }
    }
}

TEST_F(CacheFileDamage, BeforeADamagedByteEverythingIsServed)
{
    for (std::size_t at = 0; at < file.bytes.size(); ++at) {
        SCOPED_TRACE(at);
        std::string damaged = file.bytes;
        damaged[at] = '\xFF';
        ExpectServed(*Open(damaged), at);
    }
    std::string future = file.bytes;
    future[0] = 2;
    EXPECT_EQ(Open(future)->RowCache(L"r", false), nullptr) << "another version is ignored";
}

TEST_F(CacheFileDamage, AbsurdCountsAndLengthsCostNeitherTimeNorMemory)
{
    for (const auto& [at, damaged] : file.Absurd()) {
        SCOPED_TRACE(at);
        ExpectServed(*Open(damaged), at);
    }
}

TEST_F(CacheFileDamage, ValuesOfFarColumnsCostNoRoomForTheColumnsBetween)
{
    constexpr uint32_t kColumns = 5000;
    constexpr uint32_t kRows = 1500;
    FileWriter wide;
    std::vector<CString> ids;
    for (uint32_t i = 0; i < kColumns; ++i) {
        ids.push_back(L"C" + std::to_wstring(i));
    }
    wide.Number(1, 4);
    wide.Texts(ids);
    wide.Texts({L"en"});
    wide.Number(kRows, 4);
    for (uint32_t row = 0; row < kRows; ++row) {
        wide.Text(L"r" + std::to_wstring(row));
        wide.Number(1, 4);
        wide.Number(0, 2);
        wide.Number(2, 4);
        for (const uint32_t column : {kColumns - 1, 0U}) {
            wide.Number(column, 2);
            wide.Text(L"v" + std::to_wstring(column));
        }
    }
    const auto store = Open(wide.bytes);
    CString value;
    EXPECT_EQ(store->Get(L"r7", store->FindColumn(ids.back()), L"en", value), 0);
    EXPECT_EQ(value, L"v4999");
    store->RemoveAllLanguages(L"r7", store->FindColumn(ids.back()));
    EXPECT_EQ(store->Get(L"r7", store->FindColumn(ids.back()), L"en", value), 1);
    for (uint32_t i = 1; i < kColumns; ++i) {
        store->RowCache(L"r8", true)->Set(ids[i].c_str(), L"en", ids[i].c_str());
    }
    for (uint32_t i = 0; i < kColumns; ++i) {
        EXPECT_EQ(store->Get(L"r8", store->FindColumn(ids[i]), L"en", value), 0);
        EXPECT_EQ(value, i == 0 ? L"v0" : ids[i]);
    }
}

TEST_F(CacheFileDamage, ManyLanguagesAndManySmallRowsCostNoMoreThanTheirBytes)
{
    constexpr uint32_t kMany = 20'000;
    FileWriter many;
    std::vector<CString> tags;
    for (uint32_t i = 0; i < kMany; ++i) {
        tags.push_back(std::to_wstring(i));
    }
    many.Number(1, 4);
    many.Texts({tags.begin(), tags.begin() + 100});
    many.Texts(tags);
    many.Number(kMany / 4, 4);
    for (uint32_t row = 0; row < kMany / 4; ++row) {
        const uint32_t count = row == 0 ? kMany : 1;
        many.Text(L"r" + std::to_wstring(row));
        many.Number(count, 4);
        for (uint32_t i = 0; i < count; ++i) {
            many.Number(count - 1 - i, 2);
            many.Number(1, 4);
            many.Number(0, 2);
            many.Text(L"v" + std::to_wstring(row));
        }
    }
    const AllocationPeak memory;
    const auto store = Open(many.bytes);
    EXPECT_LT(memory.Bytes(), 15 * many.bytes.size());
    CString value;
    for (const CString& tag : {tags.front(), tags.back()}) {
        EXPECT_EQ(store->Get(L"r0", store->FindColumn(tags[0]), tag, value), 0);
        EXPECT_EQ(value, L"v0");
    }
    EXPECT_EQ(store->Get(L"r7", store->FindColumn(tags[0]), tags[0], value), 0);
    EXPECT_EQ(store->Get(L"r7", store->FindColumn(tags[0]), tags[1], value), 1);
}

TEST_F(CacheFileDamage, FamiliesHaveTheRightValuesAfterEveryTruncation)
{
    FamilyBuilder builder;
    builder.Column({L"W", L"double", L"mm"})
        .Column({L"X", L"double", L"mm", L"{W}*2"})
        .Column({L"T", L"string", L"", L"caf\x00E9 \x4E2D"})
        .Row(L"r", {{L"W", L"3"}})
        .Row(L"s", {{L"W", L"4"}});
    FakeProvider provider;
    provider.expressions = {{L"3mm*2", {0, 6.0}}, {L"4mm*2", {0, 8.0}}};
    const CString text = L"caf\x00E9 \x4E2D";
    for (std::size_t length = 0; length <= file.bytes.size(); ++length) {
        SCOPED_TRACE(length);
        Put(file.bytes.substr(0, length));
        const auto family =
            builder.Open(&provider, {L"<S xml:lang='en'/>"}, false, folder.File(L""));
        for (const auto& [row, column, value] :
             {std::tuple<CString, CString, CString>{L"r", L"W", L"3"},
              {L"r", L"X", L"6"},
              {L"r", L"T", text},
              {L"s", L"W", L"4"},
              {L"s", L"X", L"8"},
              {L"s", L"T", text}}) {
            EXPECT_EQ(CellText(*family, row, column), value);
        }
    }
}

} // namespace
} // namespace encap::test
