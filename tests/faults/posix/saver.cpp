#include "encap/encap.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

// Saves ever newer versions of a document until it is killed: `saver FILE VERSION`. Each version is
// written to standard output when it is saved, in eight digits.

namespace {

XMLParser DocumentOf(long version)
{
    const std::wstring text = std::to_wstring(version);
    XMLParser document(L"<Versions/>");
    XMLNode root = document.GetRootNode();
    for (int i = 0; i < 2000; ++i) {
        root.AddNode(L"Version", text.c_str(), L"Number", text.c_str());
    }
    return document;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        return 2;
    }
    const std::string narrow = argv[1];
    const CString path(narrow.begin(), narrow.end()); // the test's own folder: ASCII
    for (long version = std::atol(argv[2]);; ++version) {
        if (!DocumentOf(version).SaveXmlDocument(path.c_str(), false)) {
            return 1;
        }
        char text[16];
        const int length = std::snprintf(text, sizeof text, "%08ld", version);
        if (write(STDOUT_FILENO, text, static_cast<std::size_t>(length)) != length) {
            return 1;
        }
    }
}
