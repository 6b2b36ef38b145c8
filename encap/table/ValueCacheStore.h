#pragma once

#include "encap/foundation/StringMap.h"
#include "encap/table/ValueCache.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace encap {

/// A language as a caller names it, with its number once it has one.
struct LanguageReference {
    std::wstring_view text;
    uint32_t number = kNoNumber;

    static constexpr uint32_t kNoNumber = 0xFFFFFFFF; ///< the cache has not met it yet
};

/// The evaluated values of a whole table, by row ID, and their file from one opening of the family
/// to the next. An accelerator only: every value can be computed again. Owned by the table. Columns
/// and languages are numbered in the order of their first use; keys compare exactly.
class ValueCacheStore {
public:
    static constexpr uint32_t kNoNumber = LanguageReference::kNoNumber;

    /// Loads the directory's file of the user's locale when there is one; null or empty: no file.
    explicit ValueCacheStore(const wchar_t* cacheDirectory);
    ~ValueCacheStore();
    ValueCacheStore(const ValueCacheStore&) = delete;
    ValueCacheStore& operator=(const ValueCacheStore&) = delete;

    // Numbers of columns and languages.
    uint32_t ColumnNumber(std::wstring_view columnId);
    uint32_t LanguageNumber(std::wstring_view language);
    /// kNoNumber when the text has no number yet.
    [[nodiscard]] uint32_t FindColumn(std::wstring_view columnId) const;
    [[nodiscard]] uint32_t FindLanguage(std::wstring_view language) const;
    [[nodiscard]] std::size_t ColumnCount() const { return m_columns.size(); }
    [[nodiscard]] const CString& ColumnText(uint32_t number) const { return m_columns[number]; }
    [[nodiscard]] const std::string& ColumnUtf8(uint32_t number) const
    {
        return m_columnsUtf8[number];
    }
    [[nodiscard]] const CString& LanguageText(uint32_t number) const { return m_languages[number]; }

    /// The number that the reference has, looked up anew while it has none.
    [[nodiscard]] uint32_t FindLanguage(LanguageReference& language) const
    {
        if (language.number == kNoNumber) {
            language.number = FindLanguage(language.text);
        }
        return language.number;
    }
    uint32_t LanguageNumber(LanguageReference& language)
    {
        if (language.number == kNoNumber) {
            language.number = LanguageNumber(language.text);
        }
        return language.number;
    }

    // Rows.
    /// The row's cache; without create null when there is none.
    CValueCacheLoc* RowCache(std::wstring_view rowId, bool create);
    void ForgetRow(std::wstring_view rowId);
    void ForgetColumn(const wchar_t* columnId);
    /// Drops every value of the columns in one walk over the rows, and the whole of each row that
    /// may hold hidden references.
    void ForgetColumns(const std::vector<uint32_t>& columns);
    void ForgetAllRows();

    // Single values. A reference to a language is given its number.
    void Set(std::wstring_view rowId, uint32_t column, LanguageReference& language,
             std::wstring_view value);
    /// 0 with the value, 1 with value as it was.
    int Get(std::wstring_view rowId, uint32_t column, LanguageReference& language, CString& value);
    int Get(std::wstring_view rowId, uint32_t column, std::wstring_view language, CString& value)
    {
        LanguageReference reference{language};
        return Get(rowId, column, reference, value);
    }
    void Remove(std::wstring_view rowId, uint32_t column, std::wstring_view language);
    void RemoveAllLanguages(std::wstring_view rowId, uint32_t column);

    // The file.
    void MarkChanged() { m_changed = true; }
    [[nodiscard]] bool IsChanged() const { return m_changed; }
    /// Empty when there is no directory.
    [[nodiscard]] const CString& FilePath() const { return m_filePath; }
    /// Writes the file when something changed; the rows that keepRow refuses and those that hold
    /// typed texts are left out. Columns are numbered in the order of columnIds. Failures are
    /// silent.
    void Save(const std::vector<CString>& columnIds,
              const std::function<bool(const CString&)>& keepRow);

    /// Removes the file where a newer one cannot be written: the older one would be served next
    /// time.
    void Abandon();

    // For the row caches' own loading and saving.
    /// The number of a column in the file being written, 65535 when it has none there.
    [[nodiscard]] uint16_t FileColumn(uint32_t column) const;
    [[nodiscard]] uint16_t FileLanguage(uint32_t language) const;
    /// The number of what stands at an index of the file being read, kNoNumber when nothing does.
    [[nodiscard]] uint32_t ColumnOfFile(uint16_t index) const;
    [[nodiscard]] uint32_t LanguageOfFile(uint16_t index) const;
    /// Where the row that is being read may have a language: what the last row that had it noted.
    [[nodiscard]] std::size_t& LoadingPlace(uint32_t language);

private:
    void Load();
    void LoadRows(ArchiveReader& reader);
    [[nodiscard]] std::vector<const CString*>
    RowsToSave(const std::function<bool(const CString&)>& keepRow) const;
    void NumberForFile(const std::vector<CString>& columnIds);

    ExactMap<std::unique_ptr<CValueCacheLoc>> m_rows;
    ExactMap<uint32_t> m_columnNumbers;
    ExactMap<uint32_t> m_languageNumbers;
    std::vector<CString> m_columns;
    std::vector<std::string> m_columnsUtf8;
    std::vector<CString> m_languages;
    CString m_filePath;
    bool m_changed = false;
    CString m_lastRowId;
    CValueCacheLoc* m_lastRow = nullptr; ///< null: that row has none
    mutable uint32_t m_lastLanguage = kNoNumber;
    std::vector<uint16_t> m_fileColumns;   ///< by column number, while saving
    std::vector<uint32_t> m_columnsOfFile; ///< by file index, while loading
    std::vector<uint32_t> m_languagesOfFile;
    std::vector<std::size_t> m_loadingPlaces; ///< by language number
};

} // namespace encap
