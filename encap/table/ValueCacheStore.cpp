#include "encap/table/ValueCacheStore.h"

#include "encap/foundation/TextFormat.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"
#include "encap/platform/Locale.h"
#include "encap/table/Archive.h"

#include <algorithm>

namespace encap {

namespace {

constexpr int32_t kFileVersion = 1;
constexpr std::size_t kLeastRowBytes = 10; // of the file: an ID of one unit, and no values
constexpr uint16_t kNoFileColumn = 65535;
constexpr std::size_t kMostFileIndices = 65535;

uint32_t NumberOf(std::wstring_view text, ExactMap<uint32_t>& numbers, std::vector<CString>& texts)
{
    const auto found = numbers.find(text);
    if (found != numbers.end()) {
        return found->second;
    }
    const auto number = static_cast<uint32_t>(texts.size());
    texts.emplace_back(text);
    numbers.emplace(text, number);
    return number;
}

uint32_t FindNumber(std::wstring_view text, const ExactMap<uint32_t>& numbers)
{
    const auto found = numbers.find(text);
    return found != numbers.end() ? found->second : ValueCacheStore::kNoNumber;
}

// A count, then that many texts; what was read before damage is kept.
bool ReadTexts(ArchiveReader& reader, std::vector<CString>& texts)
{
    uint16_t count = 0;
    if (!reader.ReadUInt16(count)) {
        return false;
    }
    for (uint16_t i = 0; i < count; ++i) {
        CString text;
        if (!reader.ReadText(text)) {
            return false;
        }
        texts.push_back(std::move(text));
    }
    return true;
}

void WriteTexts(ArchiveWriter& writer, const std::vector<CString>& texts)
{
    const std::size_t count = std::min(texts.size(), kMostFileIndices);
    writer.WriteUInt16(static_cast<uint16_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        writer.WriteText(texts[i]);
    }
}

} // namespace

ValueCacheStore::ValueCacheStore(const wchar_t* cacheDirectory)
{
    if (cacheDirectory == nullptr || *cacheDirectory == L'\0') {
        return;
    }
    m_filePath = platform::WithTrailingSeparator(cacheDirectory) +
                 FormatText(L"TableCache_%d.dat", {platform::UserLocaleId()});
    Load();
}

ValueCacheStore::~ValueCacheStore() = default;

uint32_t ValueCacheStore::ColumnNumber(std::wstring_view columnId)
{
    const uint32_t number = NumberOf(columnId, m_columnNumbers, m_columns);
    if (number == m_columnsUtf8.size()) {
        m_columnsUtf8.push_back(platform::WideToUtf8(columnId));
    }
    return number;
}

uint32_t ValueCacheStore::LanguageNumber(std::wstring_view language)
{
    if (m_lastLanguage < m_languages.size() && m_languages[m_lastLanguage] == language) {
        return m_lastLanguage;
    }
    m_lastLanguage = NumberOf(language, m_languageNumbers, m_languages);
    return m_lastLanguage;
}

uint32_t ValueCacheStore::FindColumn(std::wstring_view columnId) const
{
    return FindNumber(columnId, m_columnNumbers);
}

uint32_t ValueCacheStore::FindLanguage(std::wstring_view language) const
{
    if (m_lastLanguage < m_languages.size() && m_languages[m_lastLanguage] == language) {
        return m_lastLanguage;
    }
    const uint32_t number = FindNumber(language, m_languageNumbers);
    m_lastLanguage = number;
    return number;
}

CValueCacheLoc* ValueCacheStore::RowCache(std::wstring_view rowId, bool create)
{
    if (m_lastRow != nullptr && m_lastRowId == rowId) {
        return m_lastRow;
    }
    // A row is asked for before it is made.
    const bool isMissing = m_lastRow == nullptr && m_lastRowId == rowId && !rowId.empty();
    const auto found = isMissing ? m_rows.end() : m_rows.find(rowId);
    if (found != m_rows.end()) {
        m_lastRow = found->second.get();
    } else if (create) {
        m_lastRow =
            m_rows.emplace(rowId, std::make_unique<CValueCacheLoc>(*this)).first->second.get();
        m_changed = true;
    } else {
        m_lastRow = nullptr;
    }
    m_lastRowId = rowId;
    return m_lastRow;
}

void ValueCacheStore::ForgetRow(std::wstring_view rowId)
{
    const auto found = m_rows.find(rowId);
    if (found == m_rows.end()) {
        return;
    }
    if (m_lastRow == found->second.get()) {
        m_lastRow = nullptr;
    }
    m_rows.erase(found);
    m_changed = true;
}

void ValueCacheStore::ForgetColumn(const wchar_t* columnId)
{
    const uint32_t column = FindColumn(columnId != nullptr ? columnId : L"");
    if (column != kNoNumber) {
        ForgetColumns({column});
    }
}

void ValueCacheStore::ForgetColumns(const std::vector<uint32_t>& columns)
{
    for (auto& [rowId, row] : m_rows) {
        if (row->MayHoldHiddenReferences()) {
            row->Clear();
            continue;
        }
        for (const uint32_t column : columns) {
            row->RemoveColumn(column);
        }
    }
    m_changed = m_changed || !m_rows.empty();
}

void ValueCacheStore::ForgetAllRows()
{
    m_changed = m_changed || !m_rows.empty();
    m_rows.clear();
    m_lastRow = nullptr;
}

void ValueCacheStore::Set(std::wstring_view rowId, uint32_t column, LanguageReference& language,
                          std::wstring_view value)
{
    RowCache(rowId, true)->Set(LanguageNumber(language), column, value);
}

int ValueCacheStore::Get(std::wstring_view rowId, uint32_t column, LanguageReference& language,
                         CString& value)
{
    const CValueCacheLoc* row = RowCache(rowId, false);
    const CompactText* found = row != nullptr ? row->Find(FindLanguage(language), column) : nullptr;
    if (found == nullptr) {
        return 1;
    }
    found->CopyTo(value);
    return 0;
}

void ValueCacheStore::Remove(std::wstring_view rowId, uint32_t column, std::wstring_view language)
{
    CValueCacheLoc* row = RowCache(rowId, false);
    if (row != nullptr) {
        row->Remove(FindLanguage(language), column);
    }
}

void ValueCacheStore::RemoveAllLanguages(std::wstring_view rowId, uint32_t column)
{
    CValueCacheLoc* row = RowCache(rowId, false);
    if (row != nullptr) {
        row->RemoveColumn(column);
    }
}

uint16_t ValueCacheStore::FileColumn(uint32_t column) const
{
    return column < m_fileColumns.size() ? m_fileColumns[column] : kNoFileColumn;
}

uint16_t ValueCacheStore::FileLanguage(uint32_t language) const
{
    return static_cast<uint16_t>(language);
}

uint32_t ValueCacheStore::ColumnOfFile(uint16_t index) const
{
    return index < m_columnsOfFile.size() ? m_columnsOfFile[index] : kNoNumber;
}

uint32_t ValueCacheStore::LanguageOfFile(uint16_t index) const
{
    return index < m_languagesOfFile.size() ? m_languagesOfFile[index] : kNoNumber;
}

std::size_t& ValueCacheStore::LoadingPlace(uint32_t language)
{
    m_loadingPlaces.resize(m_languages.size());
    return m_loadingPlaces[language];
}

void ValueCacheStore::Load()
{
    std::string bytes;
    if (!platform::ReadWholeFile(m_filePath, bytes)) {
        return;
    }
    ArchiveReader reader(bytes);
    int32_t version = 0;
    std::vector<CString> columns;
    std::vector<CString> languages;
    if (!reader.ReadInt32(version) || version != kFileVersion || !ReadTexts(reader, columns) ||
        !ReadTexts(reader, languages)) {
        return;
    }
    for (const CString& column : columns) {
        m_columnsOfFile.push_back(ColumnNumber(column));
    }
    for (const CString& language : languages) {
        m_languagesOfFile.push_back(LanguageNumber(language));
    }
    LoadRows(reader);
    m_columnsOfFile = {};
    m_languagesOfFile = {};
    m_loadingPlaces = {};
    m_changed = false;
}

void ValueCacheStore::LoadRows(ArchiveReader& reader)
{
    int32_t count = 0;
    if (!reader.ReadInt32(count) || count < 1) {
        return;
    }
    m_rows.reserve(std::min(static_cast<std::size_t>(count), reader.Left() / kLeastRowBytes));
    CString rowId;
    for (int32_t i = 0; i < count; ++i) {
        if (!reader.ReadText(rowId) || rowId.empty()) {
            return;
        }
        auto row = std::make_unique<CValueCacheLoc>(*this);
        const int result = row->Load(reader);
        if (result >= 0) {
            // Which of the values follow formulas in cells is not in the file.
            row->MarkHiddenReferences();
            m_rows.insert_or_assign(rowId, std::move(row));
        }
        if (result != 1) {
            return;
        }
    }
}

std::vector<const CString*>
ValueCacheStore::RowsToSave(const std::function<bool(const CString&)>& keepRow) const
{
    std::vector<const CString*> rowIds;
    for (const auto& [rowId, row] : m_rows) {
        if (!rowId.empty() && !row->HoldsTypedTexts() && keepRow(rowId)) {
            rowIds.push_back(&rowId);
        }
    }
    std::sort(rowIds.begin(), rowIds.end(),
              [](const CString* left, const CString* right) { return *left < *right; });
    return rowIds;
}

void ValueCacheStore::NumberForFile(const std::vector<CString>& columnIds)
{
    m_fileColumns.assign(m_columns.size(), kNoFileColumn);
    const std::size_t count = std::min(columnIds.size(), kMostFileIndices);
    for (std::size_t i = count; i-- > 0;) {
        const uint32_t column = FindColumn(columnIds[i]);
        if (column != kNoNumber) {
            m_fileColumns[column] = static_cast<uint16_t>(i);
        }
    }
}

void ValueCacheStore::Save(const std::vector<CString>& columnIds,
                           const std::function<bool(const CString&)>& keepRow)
{
    if (m_filePath.empty() || !m_changed) {
        return;
    }
    const std::vector<const CString*> rowIds = RowsToSave(keepRow);
    if (rowIds.empty() || m_languages.size() > kMostFileIndices) {
        Abandon();
        return;
    }
    NumberForFile(columnIds);
    ArchiveWriter writer;
    writer.WriteInt32(kFileVersion);
    WriteTexts(writer, columnIds);
    WriteTexts(writer, m_languages);
    writer.WriteInt32(static_cast<int32_t>(rowIds.size()));
    for (const CString* rowId : rowIds) {
        writer.WriteText(*rowId);
        m_rows.find(*rowId)->second->Save(writer);
    }
    if (!platform::ReplaceFileContent(m_filePath, writer.Bytes())) {
        Abandon();
    }
    m_changed = false;
}

void ValueCacheStore::Abandon()
{
    if (!m_filePath.empty()) {
        platform::DeleteFileIfPresent(m_filePath);
    }
}

} // namespace encap
