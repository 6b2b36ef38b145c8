#include "encap/host/UnitDatabase.h"

#include "encap/platform/ClassicLocale.h"
#include "encap/platform/Encoding.h"

#include <cmath>
#include <cstring>
#include <mutex>

#include <udunits2.h>

namespace encap::host {

namespace {

// UDUNITS-2 keeps its parser, its status and the maps from systems to names in static variables, so
// calls for different systems race as well. This mutex guards nothing of ours: it belongs to that
// library's state, of which a process has one. A unit is looked up once per provider, the cached
// result needs no lock.
std::mutex& UdunitsMutex()
{
    static std::mutex mutex;
    return mutex;
}

// What every call into UDUNITS-2 needs: the lock, the "C" locale (the library reads the numbers of
// its database with strtod), and silence (its handler of messages is one for the process and prints
// by default; the program's own handler is put back).
class UdunitsSession {
public:
    UdunitsSession() : m_handler(ut_set_error_message_handler(ut_ignore)) {}
    ~UdunitsSession() { ut_set_error_message_handler(m_handler); }
    UdunitsSession(const UdunitsSession&) = delete;
    UdunitsSession& operator=(const UdunitsSession&) = delete;

private:
    std::lock_guard<std::mutex> m_lock{UdunitsMutex()};
    platform::ClassicLocaleScope m_locale;
    ut_error_message_handler m_handler;
};

struct UnitDeleter {
    void operator()(ut_unit* unit) const { ut_free(unit); }
};

// UDUNITS-2 counts in metres, database lengths are in centimetres.
constexpr double kCentimetresInMetre = 100.0;

struct BaseRow {
    const char* name;
    BaseQuantity quantity;
};

constexpr BaseRow kBases[] = {
    {"kilogram", BaseQuantity::Mass},      {"meter", BaseQuantity::Length},
    {"second", BaseQuantity::Time},        {"ampere", BaseQuantity::Current},
    {"kelvin", BaseQuantity::Temperature}, {"mole", BaseQuantity::Amount},
    {"candela", BaseQuantity::Luminosity}, {"radian", BaseQuantity::Angle}};

// A unit taken apart: database = factor * (number + offset).
struct Parts {
    double factor = 1.0;
    double offset = 0.0;
    Dimensions dimensions;
};

bool AddBase(const ut_unit* basic, int power, Parts& parts)
{
    const char* name = ut_get_name(basic, UT_ASCII);
    for (const BaseRow& base : kBases) {
        if (name == nullptr || std::strcmp(name, base.name) != 0) {
            continue;
        }
        if (std::abs(power) > Dimensions::kMaxPower) {
            return false;
        }
        const auto product = parts.dimensions.Times(Dimensions::Of(base.quantity), power);
        if (!product) {
            return false;
        }
        parts.dimensions = *product;
        if (base.quantity == BaseQuantity::Length) {
            parts.factor *= std::pow(kCentimetresInMetre, power);
        }
        return true;
    }
    return false;
}

extern "C" {

ut_status VisitBasic(const ut_unit* basic, void* parts)
{
    return AddBase(basic, 1, *static_cast<Parts*>(parts)) ? UT_SUCCESS : UT_VISIT_ERROR;
}

ut_status VisitProduct(const ut_unit*, int count, const ut_unit* const* basics, const int* powers,
                       void* parts)
{
    for (int i = 0; i < count; ++i) {
        if (!AddBase(basics[i], powers[i], *static_cast<Parts*>(parts))) {
            return UT_VISIT_ERROR;
        }
    }
    return UT_SUCCESS;
}

ut_status VisitGalilean(const ut_unit*, double scale, const ut_unit* underlying, double offset,
                        void* parts);

ut_status VisitTimestamp(const ut_unit*, const ut_unit*, double, void*)
{
    return UT_VISIT_ERROR;
}

ut_status VisitLogarithmic(const ut_unit*, double, const ut_unit*, void*)
{
    return UT_VISIT_ERROR;
}

} // extern "C"

constexpr ut_visitor kVisitor{VisitBasic, VisitProduct, VisitGalilean, VisitTimestamp,
                              VisitLogarithmic};

// underlying = scale * (number + offset). The offset of a unit below another one (a prefix before
// an offset unit) is already a part of the outer one's.
ut_status VisitGalilean(const ut_unit*, double scale, const ut_unit* underlying, double offset,
                        void* parts)
{
    Parts& result = *static_cast<Parts*>(parts);
    const ut_status status = ut_accept_visitor(underlying, &kVisitor, parts);
    result.offset = result.offset / scale + offset;
    result.factor *= scale;
    return status;
}

} // namespace

struct UnitDatabase::Content {
    ut_system* system = nullptr;
};

UnitDatabase::UnitDatabase(std::string path)
    : m_path(std::move(path)), m_content(std::make_unique<Content>())
{
}

UnitDatabase::~UnitDatabase()
{
    if (m_content->system != nullptr) {
        const UdunitsSession session;
        ut_free_system(m_content->system);
    }
}

void UnitDatabase::Read()
{
    m_content->system = ut_read_xml(m_path.empty() ? nullptr : m_path.c_str());
    m_state = m_content->system != nullptr ? State::Read : State::Missing;
}

ErrorKind UnitDatabase::Find(std::wstring_view name, Unit& unit)
{
    // Longer than every name of the database: nothing to ask.
    constexpr std::size_t kLongestName = 64;
    if (name.size() > kLongestName) {
        return ErrorKind::UnknownUnit;
    }
    const std::string bytes = platform::WideToUtf8(name);
    const UdunitsSession session;
    if (m_state == State::NotRead) {
        Read();
    }
    if (m_state == State::Missing) {
        return ErrorKind::NoUnitDatabase;
    }
    const std::unique_ptr<ut_unit, UnitDeleter> found(
        ut_parse(m_content->system, bytes.c_str(), UT_UTF8));
    if (found == nullptr) {
        return ErrorKind::UnknownUnit;
    }
    Parts parts;
    if (ut_accept_visitor(found.get(), &kVisitor, &parts) != UT_SUCCESS) {
        return ErrorKind::UnusableUnit;
    }
    unit = {Scale::FromFactor(parts.factor), parts.offset, parts.dimensions, false};
    return ErrorKind::None;
}

} // namespace encap::host
