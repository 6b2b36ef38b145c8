#pragma once

#include "encap/foundation/Types.h"
#include "encap/table/CompactText.h"

#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace encap {

class ArchiveReader;
class ArchiveWriter;
class ValueCacheStore;

/// The values of one row, or of one row in one language, by the store's column numbers. They lie
/// flat, but for those of columns far behind the others: a file may name any columns, and its few
/// values must not take room for all of them.
class ColumnValues {
public:
    /// Makes room for the values of that many columns.
    void Expect(std::size_t count) { m_values.reserve(count); }
    void Set(uint32_t column, std::wstring_view value);
    /// Null when the column has no value here.
    [[nodiscard]] const CompactText* Find(uint32_t column) const
    {
        if (column >= m_values.size()) {
            return m_far != nullptr ? FindFar(column) : nullptr;
        }
        return m_values[column].HasValue() ? &m_values[column] : nullptr;
    }
    void Remove(uint32_t column);
    [[nodiscard]] bool IsEmpty() const { return m_count == 0; }
    [[nodiscard]] uint32_t Count() const { return m_count; }
    /// The numbers of the columns that have a value, ascending.
    [[nodiscard]] std::vector<uint32_t> Columns() const;

private:
    [[nodiscard]] const CompactText* FindFar(uint32_t column) const;
    void ReachTo(uint32_t column);

    std::vector<CompactText> m_values;
    std::unique_ptr<std::map<uint32_t, CompactText>> m_far; ///< behind those; often null
    uint32_t m_count = 0;
};

} // namespace encap

/// The cached values of one row. Owned by the store that made it; texts compare exactly. Every set
/// and remove marks the store as changed.
class CValueCache {
public:
    explicit CValueCache(encap::ValueCacheStore& store) : m_store(store) {}
    CValueCache(const CValueCache&) = delete;
    CValueCache& operator=(const CValueCache&) = delete;

    // The order of the virtual operations is part of the interface.
    virtual ~CValueCache();
    virtual void Set(const wchar_t* columnId, const wchar_t* language, const wchar_t* value) = 0;
    /// 0 with the value, or 1 with value as it was.
    virtual int Get(const wchar_t* columnId, const wchar_t* language, CString& value) const = 0;
    virtual void Remove(const wchar_t* columnId) = 0;
    virtual void Remove(const wchar_t* columnId, const wchar_t* language) = 0;
    virtual void Clear() = 0;
    /// 1: everything was read; 0: reading failed behind some entries, which are kept; -1: nothing
    /// could be read.
    virtual int Load(encap::ArchiveReader& reader) = 0;
    virtual void Save(encap::ArchiveWriter& writer) const = 0;

protected:
    encap::ValueCacheStore& m_store;
};

/// Values by column, for a table without languages.
class CValueCacheSimple : public CValueCache {
public:
    using CValueCache::CValueCache;

    void Set(const wchar_t* columnId, const wchar_t* language, const wchar_t* value) override;
    int Get(const wchar_t* columnId, const wchar_t* language, CString& value) const override;
    void Remove(const wchar_t* columnId) override;
    void Remove(const wchar_t* columnId, const wchar_t* language) override;
    void Clear() override;
    int Load(encap::ArchiveReader& reader) override;
    void Save(encap::ArchiveWriter& writer) const override;

private:
    encap::ColumnValues m_values;
};

/// Values by language and column: what a table keeps of one row.
class CValueCacheLoc : public CValueCache {
public:
    using CValueCache::CValueCache;

    void Set(const wchar_t* columnId, const wchar_t* language, const wchar_t* value) override;
    int Get(const wchar_t* columnId, const wchar_t* language, CString& value) const override;
    void Remove(const wchar_t* columnId) override;
    void Remove(const wchar_t* columnId, const wchar_t* language) override;
    void Clear() override;
    int Load(encap::ArchiveReader& reader) override;
    void Save(encap::ArchiveWriter& writer) const override;

    // The same by the store's numbers.
    void Set(uint32_t language, uint32_t column, std::wstring_view value);
    [[nodiscard]] const encap::CompactText* Find(uint32_t language, uint32_t column) const;
    void RemoveColumn(uint32_t column);
    void Remove(uint32_t language, uint32_t column);

    /// Whether some of the row's values may follow references that no column's formula holds (a
    /// formula typed into a cell, or values of an earlier opening): such a row is dropped whole
    /// when anything in it changes.
    [[nodiscard]] bool MayHoldHiddenReferences() const { return m_mayHoldHiddenReferences; }
    void MarkHiddenReferences() { m_mayHoldHiddenReferences = true; }
    /// Whether a value is a text as it was typed into a cell, which may evaluate to another one:
    /// the row then does not go into the file.
    [[nodiscard]] bool HoldsTypedTexts() const { return m_holdsTypedTexts; }
    void MarkTypedTexts() { m_holdsTypedTexts = true; }

private:
    struct Language {
        uint32_t number;
        encap::ColumnValues values;
    };

    [[nodiscard]] const encap::ColumnValues* ValuesOf(uint32_t language) const;
    void EraseIfEmpty(std::size_t position);
    [[nodiscard]] bool LoadLanguage(encap::ArchiveReader& reader, uint32_t language);

    std::vector<Language> m_languages;
    bool m_mayHoldHiddenReferences = false;
    bool m_holdsTypedTexts = false;
};
