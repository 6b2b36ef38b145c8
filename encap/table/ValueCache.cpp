#include "encap/table/ValueCache.h"

#include "encap/foundation/NullText.h"
#include "encap/table/Archive.h"
#include "encap/table/ValueCacheStore.h"

#include <algorithm>

using encap::ArchiveReader;
using encap::ArchiveWriter;
using encap::ColumnValues;
using encap::CompactText;
using encap::ValueCacheStore;

namespace encap {

namespace {

/// A column lies flat when it is among the first ones, or when there are values for a fair part of
/// the columns before it.
constexpr uint64_t kFirstColumns = 32;
constexpr uint64_t kColumnsAValue = 4;

} // namespace

void ColumnValues::Set(uint32_t column, std::wstring_view value)
{
    if (column >= m_values.size() && column < kFirstColumns + kColumnsAValue * m_count) {
        ReachTo(column);
    }
    if (column >= m_values.size() && m_far == nullptr) {
        m_far = std::make_unique<std::map<uint32_t, CompactText>>();
    }
    CompactText text(value);
    CompactText& place = column < m_values.size() ? m_values[column] : (*m_far)[column];
    if (!place.HasValue()) {
        ++m_count;
    }
    place = std::move(text);
}

// What was far until now and lies flat from here on moves.
void ColumnValues::ReachTo(uint32_t column)
{
    m_values.resize(column + std::size_t{1});
    while (m_far != nullptr && !m_far->empty() && m_far->begin()->first <= column) {
        m_values[m_far->begin()->first] = std::move(m_far->begin()->second);
        m_far->erase(m_far->begin());
    }
}

const CompactText* ColumnValues::FindFar(uint32_t column) const
{
    const auto found = m_far->find(column);
    return found != m_far->end() ? &found->second : nullptr;
}

void ColumnValues::Remove(uint32_t column)
{
    if (Find(column) == nullptr) {
        return;
    }
    if (column < m_values.size()) {
        m_values[column] = CompactText();
    } else {
        m_far->erase(column);
    }
    --m_count;
}

std::vector<uint32_t> ColumnValues::Columns() const
{
    std::vector<uint32_t> columns;
    columns.reserve(m_count);
    for (uint32_t column = 0; column < m_values.size(); ++column) {
        if (m_values[column].HasValue()) {
            columns.push_back(column);
        }
    }
    if (m_far != nullptr) {
        for (const auto& [column, value] : *m_far) {
            columns.push_back(column);
        }
    }
    return columns;
}

} // namespace encap

namespace {

/// A row's values get the room that they will take when the whole row is read, within reason.
constexpr std::size_t kMostExpectedColumns = 64;
constexpr std::size_t kLeastValueBytes = 6; // of the file: an index, and an empty text

int GetFrom(const ColumnValues* values, uint32_t column, CString& value)
{
    const CompactText* found = values != nullptr ? values->Find(column) : nullptr;
    if (found == nullptr) {
        return 1;
    }
    found->CopyTo(value);
    return 0;
}

// A count of entries, then for each the index of its column and its value, by column ID.
void SaveValues(const ColumnValues& values, const ValueCacheStore& store, ArchiveWriter& writer)
{
    std::vector<uint32_t> columns = values.Columns();
    std::sort(columns.begin(), columns.end(), [&](uint32_t left, uint32_t right) {
        return store.ColumnText(left) < store.ColumnText(right);
    });
    writer.WriteInt32(static_cast<int32_t>(columns.size()));
    CString value;
    for (const uint32_t column : columns) {
        values.Find(column)->CopyTo(value);
        writer.WriteUInt16(store.FileColumn(column));
        writer.WriteText(value);
    }
}

// Keeps every complete entry; false when reading failed.
bool LoadValues(ArchiveReader& reader, const ValueCacheStore& store, ColumnValues& values)
{
    int32_t count = 0;
    if (!reader.ReadInt32(count)) {
        return false;
    }
    if (count > 0) {
        values.Expect(std::min({static_cast<std::size_t>(count), reader.Left() / kLeastValueBytes,
                                kMostExpectedColumns}));
    }
    CString value;
    for (int32_t i = 0; i < count; ++i) {
        uint16_t index = 0;
        if (!reader.ReadUInt16(index) || !reader.ReadText(value)) {
            return false;
        }
        const uint32_t column = store.ColumnOfFile(index);
        if (column != ValueCacheStore::kNoNumber) {
            values.Set(column, value);
        }
    }
    return true;
}

} // namespace

CValueCache::~CValueCache() = default;

void CValueCacheSimple::Set(const wchar_t* columnId, const wchar_t*, const wchar_t* value)
{
    m_values.Set(m_store.ColumnNumber(encap::ViewOrEmpty(columnId)), encap::ViewOrEmpty(value));
    m_store.MarkChanged();
}

int CValueCacheSimple::Get(const wchar_t* columnId, const wchar_t*, CString& value) const
{
    return GetFrom(&m_values, m_store.FindColumn(encap::ViewOrEmpty(columnId)), value);
}

void CValueCacheSimple::Remove(const wchar_t* columnId)
{
    m_values.Remove(m_store.FindColumn(encap::ViewOrEmpty(columnId)));
    m_store.MarkChanged();
}

void CValueCacheSimple::Remove(const wchar_t* columnId, const wchar_t*)
{
    Remove(columnId);
}

void CValueCacheSimple::Clear()
{
    m_values = ColumnValues();
    m_store.MarkChanged();
}

int CValueCacheSimple::Load(ArchiveReader& reader)
{
    if (LoadValues(reader, m_store, m_values)) {
        return 1;
    }
    return m_values.IsEmpty() ? -1 : 0;
}

void CValueCacheSimple::Save(ArchiveWriter& writer) const
{
    SaveValues(m_values, m_store, writer);
}

void CValueCacheLoc::Set(const wchar_t* columnId, const wchar_t* language, const wchar_t* value)
{
    Set(m_store.LanguageNumber(encap::ViewOrEmpty(language)),
        m_store.ColumnNumber(encap::ViewOrEmpty(columnId)), encap::ViewOrEmpty(value));
}

void CValueCacheLoc::Set(uint32_t language, uint32_t column, std::wstring_view value)
{
    m_store.MarkChanged();
    for (Language& known : m_languages) {
        if (known.number == language) {
            known.values.Set(column, value);
            return;
        }
    }
    const std::size_t expected = std::min(m_store.ColumnCount(), kMostExpectedColumns);
    m_languages.push_back({language, ColumnValues()});
    m_languages.back().values.Expect(expected);
    m_languages.back().values.Set(column, value);
}

int CValueCacheLoc::Get(const wchar_t* columnId, const wchar_t* language, CString& value) const
{
    return GetFrom(ValuesOf(m_store.FindLanguage(encap::ViewOrEmpty(language))),
                   m_store.FindColumn(encap::ViewOrEmpty(columnId)), value);
}

const CompactText* CValueCacheLoc::Find(uint32_t language, uint32_t column) const
{
    const ColumnValues* values = ValuesOf(language);
    return values != nullptr ? values->Find(column) : nullptr;
}

void CValueCacheLoc::Remove(const wchar_t* columnId)
{
    RemoveColumn(m_store.FindColumn(encap::ViewOrEmpty(columnId)));
}

void CValueCacheLoc::RemoveColumn(uint32_t column)
{
    m_store.MarkChanged();
    for (std::size_t i = m_languages.size(); i-- > 0;) {
        m_languages[i].values.Remove(column);
        EraseIfEmpty(i);
    }
}

void CValueCacheLoc::Remove(const wchar_t* columnId, const wchar_t* language)
{
    Remove(m_store.FindLanguage(encap::ViewOrEmpty(language)),
           m_store.FindColumn(encap::ViewOrEmpty(columnId)));
}

void CValueCacheLoc::Remove(uint32_t language, uint32_t column)
{
    m_store.MarkChanged();
    for (std::size_t i = 0; i < m_languages.size(); ++i) {
        if (m_languages[i].number == language) {
            m_languages[i].values.Remove(column);
            EraseIfEmpty(i);
            return;
        }
    }
}

void CValueCacheLoc::Clear()
{
    m_languages.clear();
    m_mayHoldHiddenReferences = false;
    m_holdsTypedTexts = false;
    m_store.MarkChanged();
}

int CValueCacheLoc::Load(ArchiveReader& reader)
{
    int32_t count = 0;
    bool complete = reader.ReadInt32(count);
    for (int32_t i = 0; complete && i < count; ++i) {
        uint16_t index = 0;
        complete = reader.ReadUInt16(index) && LoadLanguage(reader, m_store.LanguageOfFile(index));
    }
    if (complete) {
        return 1;
    }
    return m_languages.empty() ? -1 : 0;
}

// A file may name many languages, and one of them again and again: they are not searched.
bool CValueCacheLoc::LoadLanguage(ArchiveReader& reader, uint32_t language)
{
    if (language == ValueCacheStore::kNoNumber) {
        ColumnValues leftOut;
        return LoadValues(reader, m_store, leftOut);
    }
    std::size_t& place = m_store.LoadingPlace(language);
    if (place >= m_languages.size() || m_languages[place].number != language) {
        place = m_languages.size();
        m_languages.push_back({language, ColumnValues()});
    }
    const bool isComplete = LoadValues(reader, m_store, m_languages[place].values);
    EraseIfEmpty(place);
    return isComplete;
}

void CValueCacheLoc::Save(ArchiveWriter& writer) const
{
    std::vector<const Language*> languages;
    for (const Language& language : m_languages) {
        languages.push_back(&language);
    }
    std::sort(languages.begin(), languages.end(), [&](const Language* left, const Language* right) {
        return m_store.LanguageText(left->number) < m_store.LanguageText(right->number);
    });
    writer.WriteInt32(static_cast<int32_t>(languages.size()));
    for (const Language* language : languages) {
        writer.WriteUInt16(m_store.FileLanguage(language->number));
        SaveValues(language->values, m_store, writer);
    }
}

const ColumnValues* CValueCacheLoc::ValuesOf(uint32_t language) const
{
    for (const Language& known : m_languages) {
        if (known.number == language) {
            return &known.values;
        }
    }
    return nullptr;
}

void CValueCacheLoc::EraseIfEmpty(std::size_t position)
{
    if (m_languages[position].values.IsEmpty()) {
        m_languages.erase(m_languages.begin() + static_cast<std::ptrdiff_t>(position));
    }
}
