#include "pin_family.h"

#include <encap/encap.h>
#include <encap/host/StandaloneEvaluatorProvider.h>

int main()
{
    CStandaloneEvaluatorProvider provider;
    CEncapFamily family(kPinFamily, {}, L"", &provider, false);
    CString length;
    const auto result = family.GetEncapFamilyTable()->GetValue(L"r1", L"L", length);
    return result == CTableEvaluator::EvaluateOK && length == L"25" ? 0 : 1;
}
