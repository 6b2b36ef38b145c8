#include "encap/icons/PeResources.h"

#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NumberText.h"
#include "encap/icons/IconImage.h"
#include "encap/platform/Encoding.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

namespace encap {
namespace {

constexpr uint16_t kDosMagic = 0x5A4D;    // "MZ"
constexpr uint32_t kPeMagic = 0x00004550; // "PE", 0, 0
constexpr uint16_t kOptionalMagic32 = 0x10B;
constexpr uint16_t kOptionalMagic64 = 0x20B;
constexpr uint32_t kCoffHeaderBytes = 24; // the magic included
constexpr uint64_t kSectionBytes = 40;
constexpr uint32_t kResourceDirectoryIndex = 2;
constexpr uint32_t kDirectoryBytes = 16;
constexpr uint32_t kEntryBytes = 8;
constexpr uint32_t kDataEntryBytes = 16;
constexpr uint32_t kHighBit = 0x80000000;

constexpr uint32_t kGroupHeaderBytes = 6;
constexpr uint32_t kGroupEntryBytes = 14;
constexpr uint32_t kMostDisplayDepth = 32;

struct EntryCounts {
    uint32_t texts = 0;
    uint32_t numbers = 0;
};

/// How many entries of a directory are there: as it says, but no more than the tree holds.
EntryCounts CountsOf(ByteView tree, uint32_t directory)
{
    if (!Holds(tree, directory, kDirectoryBytes)) {
        return {};
    }
    const uint64_t held = (tree.size() - directory - kDirectoryBytes) / kEntryBytes;
    EntryCounts counts;
    counts.texts =
        static_cast<uint32_t>(std::min<uint64_t>(ReadU16(tree.data() + directory + 12), held));
    counts.numbers = static_cast<uint32_t>(
        std::min<uint64_t>(ReadU16(tree.data() + directory + 14), held - counts.texts));
    return counts;
}

const unsigned char* EntryAt(ByteView tree, uint32_t directory, uint32_t index)
{
    return tree.data() + directory + kDirectoryBytes + uint64_t{index} * kEntryBytes;
}

/// The directory that an entry leads to; nothing when it is absent or leads to data.
std::optional<uint32_t> Subdirectory(std::optional<uint32_t> entry)
{
    if (!entry || (*entry & kHighBit) == 0) {
        return std::nullopt;
    }
    return *entry & ~kHighBit;
}

uint32_t Side(unsigned char stored)
{
    return stored != 0 ? stored : 256;
}

uint32_t SizeDistance(const IconGroupEntry& entry)
{
    const auto distance = [](uint32_t side) {
        return side > kDefaultIconSide ? side - kDefaultIconSide : kDefaultIconSide - side;
    };
    return distance(entry.width) + distance(entry.height);
}

} // namespace

std::optional<ResourceName> ResourceName::FromPointer(const wchar_t* name)
{
    constexpr std::uintptr_t kNumbers = 0x10000;
    const auto value = reinterpret_cast<std::uintptr_t>(name);
    if (value < kNumbers) {
        return value == 0 ? std::nullopt
                          : std::optional(ResourceName{static_cast<uint16_t>(value), {}});
    }
    if (name[0] == L'\0') {
        return std::nullopt;
    }
    if (name[0] != L'#') {
        return ResourceName{0, name};
    }
    const std::optional<int32_t> number = ReadInteger(name + 1);
    if (!number || *number < 0 || *number >= static_cast<int32_t>(kNumbers)) {
        return std::nullopt;
    }
    return ResourceName{static_cast<uint16_t>(*number), {}};
}

CString ResourceName::AsText() const
{
    return text.empty() ? L'#' + FormatInteger(number) : text;
}

std::optional<PeResources> PeResources::Open(ByteView file)
{
    PeResources resources(file);
    return resources.ReadHeaders() ? std::optional(std::move(resources)) : std::nullopt;
}

bool PeResources::ReadHeaders()
{
    constexpr uint32_t kDosHeaderBytes = 64;
    if (!Holds(m_file, 0, kDosHeaderBytes) || ReadU16(m_file.data()) != kDosMagic) {
        return false;
    }
    const uint64_t coff = ReadU32(m_file.data() + 60);
    if (!Holds(m_file, coff, kCoffHeaderBytes) || ReadU32(m_file.data() + coff) != kPeMagic) {
        return false;
    }
    const uint32_t sectionCount = ReadU16(m_file.data() + coff + 6);
    const uint32_t optionalBytes = ReadU16(m_file.data() + coff + 20);
    const uint64_t optional = coff + kCoffHeaderBytes;
    if (optionalBytes < 2 ||
        !Holds(m_file, optional, uint64_t{optionalBytes} + sectionCount * kSectionBytes)) {
        return false;
    }
    ReadSections(m_file.subspan(optional + optionalBytes, sectionCount * kSectionBytes));
    return FindTree(m_file.subspan(optional, optionalBytes));
}

void PeResources::ReadSections(ByteView table)
{
    for (std::size_t at = 0; at < table.size(); at += kSectionBytes) {
        const unsigned char* section = table.data() + at;
        m_sections.push_back({ReadU32(section + 12), ReadU32(section + 16), ReadU32(section + 20)});
    }
    const auto isBelow = [](const Section& left, const Section& right) {
        return left.address < right.address;
    };
    std::stable_sort(m_sections.begin(), m_sections.end(), isBelow);
}

bool PeResources::FindTree(ByteView optionalHeader)
{
    const uint16_t magic = ReadU16(optionalHeader.data());
    if (magic != kOptionalMagic32 && magic != kOptionalMagic64) {
        return false;
    }
    const uint32_t directories = magic == kOptionalMagic32 ? 96 : 112;
    const uint32_t entry = directories + kResourceDirectoryIndex * 8;
    if (!Holds(optionalHeader, entry, 8)) {
        return true;
    }
    const uint32_t directoryCount = ReadU32(optionalHeader.data() + directories - 4);
    const uint32_t address = ReadU32(optionalHeader.data() + entry);
    if (directoryCount > kResourceDirectoryIndex && address != 0) {
        m_tree = BytesAt(address);
    }
    return true;
}

ByteView PeResources::BytesAt(uint32_t address) const
{
    const auto isBefore = [](uint32_t wanted, const Section& section) {
        return wanted < section.address;
    };
    auto section = std::upper_bound(m_sections.begin(), m_sections.end(), address, isBefore);
    if (section == m_sections.begin()) {
        return {};
    }
    --section;
    const uint32_t inside = address - section->address;
    const uint64_t offset = uint64_t{section->fileOffset} + inside;
    if (inside >= section->fileBytes || offset >= m_file.size()) {
        return {};
    }
    const uint64_t rest = m_file.size() - offset;
    return m_file.subspan(offset, std::min<uint64_t>(section->fileBytes - inside, rest));
}

std::optional<uint32_t> PeResources::FindNumber(uint32_t directory, uint16_t number) const
{
    // The format keeps number entries in rising order, so a crafted, long directory costs little.
    const EntryCounts counts = CountsOf(m_tree, directory);
    uint32_t low = counts.texts;
    uint32_t high = counts.texts + counts.numbers;
    while (low < high) {
        const uint32_t middle = low + (high - low) / 2;
        const unsigned char* entry = EntryAt(m_tree, directory, middle);
        const uint32_t id = ReadU32(entry);
        if (id == number) {
            return ReadU32(entry + 4);
        }
        (id < number ? low : high) = id < number ? middle + 1 : middle;
    }
    return std::nullopt;
}

std::optional<uint32_t> PeResources::FindText(uint32_t directory, const CString& text) const
{
    const std::size_t unitCount = platform::WideToUtf16(text).size();
    const EntryCounts counts = CountsOf(m_tree, directory);
    for (uint32_t index = 0; index < counts.texts; ++index) {
        const unsigned char* entry = EntryAt(m_tree, directory, index);
        if (IsText(ReadU32(entry) & ~kHighBit, text, unitCount)) {
            return ReadU32(entry + 4);
        }
    }
    return std::nullopt;
}

// The length is compared first: many entries may share one very long text.
bool PeResources::IsText(uint32_t offset, const CString& text, std::size_t unitCount) const
{
    if (!Holds(m_tree, offset, 2) || ReadU16(m_tree.data() + offset) != unitCount) {
        return false;
    }
    const std::optional<CString> stored = TextAt(offset);
    return stored && EqualNoCase(*stored, text);
}

std::optional<CString> PeResources::TextAt(uint32_t offset) const
{
    const std::size_t unitCount =
        Holds(m_tree, offset, 2) ? ReadU16(m_tree.data() + offset) : std::size_t{0};
    if (unitCount == 0 || !Holds(m_tree, uint64_t{offset} + 2, unitCount * 2)) {
        return std::nullopt;
    }
    std::u16string units;
    for (std::size_t index = 0; index < unitCount; ++index) {
        units.push_back(static_cast<char16_t>(ReadU16(m_tree.data() + offset + 2 + index * 2)));
    }
    return platform::Utf16ToWide(units);
}

std::optional<uint32_t> PeResources::FirstEntry(uint32_t directory) const
{
    const EntryCounts counts = CountsOf(m_tree, directory);
    if (counts.texts + counts.numbers == 0) {
        return std::nullopt;
    }
    return ReadU32(EntryAt(m_tree, directory, 0) + 4);
}

std::optional<ByteView> PeResources::Find(uint16_t type, const ResourceName& name) const
{
    const std::optional<uint32_t> names = Subdirectory(FindNumber(0, type));
    if (!names) {
        return std::nullopt;
    }
    return FirstLanguage(Subdirectory(name.text.empty() ? FindNumber(*names, name.number)
                                                        : FindText(*names, name.text)));
}

std::optional<ByteView> PeResources::FirstLanguage(std::optional<uint32_t> languages) const
{
    const std::optional<uint32_t> data = languages ? FirstEntry(*languages) : std::nullopt;
    if (!data || (*data & kHighBit) != 0 || !Holds(m_tree, *data, kDataEntryBytes)) {
        return std::nullopt;
    }
    const ByteView bytes = BytesAt(ReadU32(m_tree.data() + *data));
    const uint32_t byteCount = ReadU32(m_tree.data() + *data + 4);
    return Holds(bytes, 0, byteCount) ? std::optional(bytes.first(byteCount)) : std::nullopt;
}

void PeResources::ForEach(uint16_t type, const Visitor& visit) const
{
    const std::optional<uint32_t> names = Subdirectory(FindNumber(0, type));
    const EntryCounts counts = names ? CountsOf(m_tree, *names) : EntryCounts();
    for (uint32_t index = 0; index < counts.texts + counts.numbers; ++index) {
        const unsigned char* entry = EntryAt(m_tree, *names, index);
        const uint32_t id = ReadU32(entry);
        const bool isText = index < counts.texts;
        const std::optional<CString> text = isText ? TextAt(id & ~kHighBit) : CString();
        const ResourceName name{static_cast<uint16_t>(isText ? 0 : id), text.value_or(L"")};
        const bool isNamed = isText ? text.has_value() : id == name.number;
        if (isNamed && !visit(name, FirstLanguage(Subdirectory(ReadU32(entry + 4))))) {
            return;
        }
    }
}

std::optional<std::vector<IconGroupEntry>> ReadIconGroup(ByteView group)
{
    if (!Holds(group, 0, kGroupHeaderBytes)) {
        return std::nullopt;
    }
    const uint32_t count = ReadU16(group.data() + 4);
    if (!Holds(group, kGroupHeaderBytes, uint64_t{count} * kGroupEntryBytes)) {
        return std::nullopt;
    }
    std::vector<IconGroupEntry> entries;
    for (uint32_t index = 0; index < count; ++index) {
        const unsigned char* at =
            group.data() + kGroupHeaderBytes + uint64_t{index} * kGroupEntryBytes;
        const uint32_t bitsPerPixel = uint32_t{ReadU16(at + 4)} * ReadU16(at + 6);
        entries.push_back({Side(at[0]), Side(at[1]), bitsPerPixel, ReadU16(at + 12)});
    }
    return entries;
}

const IconGroupEntry* BestIcon(const std::vector<IconGroupEntry>& entries)
{
    const auto rank = [](const IconGroupEntry& entry) {
        const bool tooDeep = entry.bitsPerPixel > kMostDisplayDepth;
        return std::tuple(SizeDistance(entry), tooDeep, kMostDisplayDepth - entry.bitsPerPixel);
    };
    const auto isBetter = [rank](const IconGroupEntry& left, const IconGroupEntry& right) {
        return rank(left) < rank(right);
    };
    const auto best = std::min_element(entries.begin(), entries.end(), isBetter);
    return best != entries.end() ? &*best : nullptr;
}

} // namespace encap
