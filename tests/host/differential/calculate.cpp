#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/platform/Encoding.h"

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

// The standalone provider for scripts: answers each line of standard input with one line.
//   evaluate<tab>UNIT<tab>EXPRESSION      status and value
//   convert<tab>VALUE<tab>FROM<tab>TO     status and value
//   database<tab>UNIT                     status and the database unit

namespace {

std::vector<CString> Fields(const std::string& line)
{
    std::vector<CString> fields;
    std::size_t start = 0;
    for (std::size_t end = line.find('\t'); start <= line.size(); end = line.find('\t', start)) {
        end = end == std::string::npos ? line.size() : end;
        fields.push_back(encap::platform::Utf8ToWide(line.substr(start, end - start)));
        start = end + 1;
    }
    fields.resize(4);
    return fields;
}

void Print(int status, double value)
{
    std::printf("%d\t%.17g\n", status, value);
}

} // namespace

int main()
{
    CStandaloneEvaluatorProvider provider;
    for (std::string line; std::getline(std::cin, line);) {
        const std::vector<CString> fields = Fields(line);
        double value = 0.0;
        if (fields[0] == L"evaluate") {
            const int status =
                provider.EvaluateExpression(fields[2].c_str(), fields[1].c_str(), value);
            Print(status, value);
        } else if (fields[0] == L"convert") {
            const int status = provider.ConvertUnits(fields[1].c_str(), fields[2].c_str(),
                                                     fields[3].c_str(), value);
            Print(status, value);
        } else {
            CString unit;
            const int status = provider.GetDatabaseUnit(fields[1].c_str(), unit);
            std::printf("%d\t%s\n", status, encap::platform::WideToUtf8(unit).c_str());
        }
    }
    return 0;
}
