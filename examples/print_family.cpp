#include <iostream>

#include <encap/encap.h>
#include <encap/host/StandaloneEvaluatorProvider.h>

int main(int argc, char** argv)
{
    XMLParser file;
    const std::string path(argc > 1 ? argv[1] : "");
    if (!file.LoadXmlDocument(CString(path.begin(), path.end()).c_str())) {
        std::cerr << "cannot read " << path << '\n';
        return 1;
    }
    CStandaloneEvaluatorProvider host; // or your own IEvaluatorProvider
    const CEncapFamily family(file, {}, L"", &host, false);
    CEncapFamilyTable* table = family.GetEncapFamilyTable();
    for (const CString& row : table->GetAllRowIDs()) {
        for (const CString& column : table->GetAllColumnIDs()) {
            CString value;
            table->GetValue(row.c_str(), column.c_str(), value);
            std::wcout << value << L'\t';
        }
        std::wcout << L'\n';
    }
}
