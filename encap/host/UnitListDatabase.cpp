#include "encap/host/UnitList.h"

#include "encap/host/UnitDatabase.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"
#include "encap/platform/UnitListPath.h"

namespace encap::host {

struct UnitDatabase::Content {
    UnitList units;
};

UnitDatabase::UnitDatabase(std::string path)
    : m_path(std::move(path)), m_content(std::make_unique<Content>())
{
}

UnitDatabase::~UnitDatabase() = default;

void UnitDatabase::Read()
{
    const CString path = m_path.empty() ? platform::UnitListPath() : platform::Utf8ToWide(m_path);
    std::string bytes;
    const bool isRead = platform::ReadWholeFile(path, bytes) && m_content->units.Read(bytes);
    m_state = isRead ? State::Read : State::Missing;
}

ErrorKind UnitDatabase::Find(std::wstring_view name, Unit& unit)
{
    if (m_state == State::NotRead) {
        Read();
    }
    return m_state == State::Read ? m_content->units.Find(platform::WideToUtf8(name), unit)
                                  : ErrorKind::NoUnitDatabase;
}

} // namespace encap::host
