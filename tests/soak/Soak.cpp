#include "encap/encap.h"
#include "encap/host/StandaloneEvaluatorProvider.h"
#include "fuzz/Targets.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

// Opens, edits, evaluates, saves and closes families for as long as it is told, and compares the
// memory that the process holds near its start with what it holds at its end: `soak [SECONDS]`.
// Status 1 when it has grown.

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Megabytes of the process in memory; 0 where the system does not tell.
double ResidentMegabytes()
{
    std::ifstream status("/proc/self/statm");
    double total = 0.0;
    double resident = 0.0;
    status >> total >> resident;
    constexpr double kPage = 4096.0;
    return resident * kPage / 1e6;
}

CString FileText(const fs::path& path)
{
    const std::wstring wide = path.wstring();
    XMLParser document;
    CString text;
    if (document.LoadXmlDocument(wide.c_str())) {
        document.GetXml(text);
    }
    return text;
}

class Soak {
public:
    explicit Soak(uint32_t seed) : m_random(seed)
    {
        for (const auto& entry : fs::recursive_directory_iterator(ENCAP_SAMPLES "/families")) {
            if (entry.is_directory() &&
                fs::exists(entry.path() / entry.path().filename().concat(".xml"))) {
                m_samples.push_back(entry.path());
            }
        }
        std::ranges::sort(m_samples);
    }

    void Session()
    {
        if (Below(4) == 0) {
            std::string script(200, '\0');
            std::ranges::generate(script, [this] { return static_cast<char>(Below(256)); });
            encap::fuzz::RunEdits(script);
            return;
        }
        const fs::path& sample = m_samples[Below(m_samples.size())];
        const CString text = FileText(sample / sample.filename().concat(".xml"));
        const std::vector<CString> strings{FileText(sample / "FamilyStrings.en.xml"),
                                           FileText(sample / "FamilyStrings.de.xml")};
        const CString cache = Below(2) == 0 ? m_folder.File(L"") : CString();
        CEncapFamily family(text.c_str(), strings, cache.c_str(), &m_provider, Below(4) == 0);
        for (int count = 0; count < 30; ++count) {
            Edit(family);
            Read(*family.GetEncapFamilyTable(), 10);
        }
        family.GetFamilyXML().SaveXmlDocument(m_folder.File(L"family.xml").c_str(), false);
        const CEncapFamily reopened(FileText(m_folder.Native(L"family.xml")).c_str(), strings, L"",
                                    &m_provider, false);
        Read(*reopened.GetEncapFamilyTable(), 100);
        ++m_sessions;
    }

    long Sessions() const { return m_sessions; }
    long Reads() const { return m_reads; }

private:
    std::size_t Below(std::size_t limit) { return m_random() % std::max<std::size_t>(limit, 1); }

    CString AnyRow(const CEncapFamilyTable& table)
    {
        return table.GetRowIDByIndex(static_cast<int>(Below(table.GetRowsCount())));
    }
    CString AnyColumn(const CEncapFamilyTable& table)
    {
        return table.GetFamilyColumnIDByIndex(static_cast<int>(Below(table.GetColumnsCount())));
    }

    void Read(CEncapFamilyTable& table, int count)
    {
        CString value;
        for (; count > 0; --count, ++m_reads) {
            table.GetValue(AnyRow(table).c_str(), AnyColumn(table).c_str(),
                           Below(2) == 0 ? L"en" : L"de", value);
        }
    }

    void Edit(CEncapFamily& family)
    {
        CEncapFamilyTable& table = *family.GetEncapFamilyTable();
        const CString text = std::to_wstring(Below(100));
        CEncapFamilyColumn* column = table.GetFamilyColumnByID(AnyColumn(table).c_str());
        switch (Below(8)) {
        case 0: table.InsertNewRow(static_cast<int>(Below(20)), CString()); break;
        case 1: table.CopyRow(AnyRow(table)); break;
        case 2: table.DeleteRow(static_cast<int>(Below(table.GetRowsCount()))); break;
        case 3: table.DuplicateColumn(0, AnyColumn(table).c_str(), (L"C" + text).c_str()); break;
        case 4: column->SetFormula((L"{" + AnyColumn(table) + L"}*" + text).c_str()); break;
        case 5: column->SetTitle(text.c_str(), L"de"); break;
        case 6: family.SetDisplayName(text.c_str()); break;
        default:
            table.SetValue(AnyRow(table).c_str(), AnyColumn(table).c_str(), text.c_str(), true);
        }
    }

    std::mt19937 m_random;
    std::vector<fs::path> m_samples;
    TemporaryFolder m_folder;
    CStandaloneEvaluatorProvider m_provider;
    long m_sessions = 0;
    long m_reads = 0;
};

} // namespace

int main(int argc, char** argv)
{
    const double seconds = argc > 1 ? std::atof(argv[1]) : 10.0;
    const auto start = Clock::now();
    const auto elapsed = [start] {
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    Soak soak(1);
    // The first part fills caches and the allocator's pools.
    while (elapsed() < seconds / 5) {
        soak.Session();
    }
    const double early = ResidentMegabytes();
    while (elapsed() < seconds) {
        soak.Session();
    }
    const double late = ResidentMegabytes();
    std::printf(
        "%.0f s, %ld families, %ld reads; memory %.1f MB after a fifth, %.1f MB at the end\n",
        elapsed(), soak.Sessions(), soak.Reads(), early, late);
    constexpr double kMostGrowth = 1.1;
    constexpr double kMegabytesOfChance = 8.0;
    // Under a sanitizer freed memory is kept for a while.
    const bool isFlat = encap::test::kSanitized || late <= early * kMostGrowth + kMegabytesOfChance;
    return isFlat && soak.Sessions() > 0 ? 0 : 1;
}
