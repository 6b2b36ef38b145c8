#include "encap/platform/Encoding.h"

#include "encap/platform/Files.h"
#include "encap/xml/XMLParser.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/PlatformFacts.h"

#include <gtest/gtest.h>

namespace encap {
namespace {

using platform::ReadWholeFile;
using platform::ReplaceFileContent;

/// Encodings that documents are read and written in on every platform, whoever converts there: the
/// XML library, its iconv, or the system.
constexpr struct {
    const char* name;
    const wchar_t* text;
    const char* bytes;
} kEncodings[] = {
    {"ISO-8859-2", L"\u0141\u00F3d\u017A",
     "\xA3\xF3"
     "d\xBC"},
    {"ISO-8859-5", L"\u0413\u0430\u0439\u043A\u0430", "\xB3\xD0\xD9\xDA\xD0"},
    {"ISO-8859-9", L"Somun \u011E\u015F", "Somun \xD0\xFE"},
    {"ISO-8859-15", L"\u20AC \u0153", "\xA4 \xBD"},
    {"windows-1250", L"\u0141\u00F3d\u017A \u20AC",
     "\xA3\xF3"
     "d\x9F \x80"},
    {"windows-1251", L"\u0413\u0430\u0439\u043A\u0430", "\xC3\xE0\xE9\xEA\xE0"},
    {"windows-1252", L"\u20AC \u00E4 \u0153", "\x80 \xE4 \x9C"},
    {"windows-1253", L"\u03A0\u03B1\u03BE\u03B9\u03BC\u03AC\u03B4\u03B9",
     "\xD0\xE1\xEE\xE9\xEC\xDC\xE4\xE9"},
    {"windows-1254", L"Somun \u011E\u015F", "Somun \xD0\xFE"},
    {"windows-1255", L"\u05D0\u05D5\u05DD", "\xE0\xE5\xED"},
    {"windows-1256", L"\u0635\u0627\u0645\u0648\u0644\u0629", "\xD5\xC7\xE3\xE6\xE1\xC9"},
    {"windows-1257", L"Uzgrieznis \u0122\u0161", "Uzgrieznis \xCC\xF0"},
    {"windows-1258", L"\u0110ai \u00E2",
     "\xD0"
     "ai \xE2"},
    {"windows-874", L"\u0E19\u0E47\u0E2D\u0E15", "\xB9\xE7\xCD\xB5"},
    {"KOI8-R", L"\u0413\u0430\u0439\u043A\u0430", "\xE7\xC1\xCA\xCB\xC1"},
    {"KOI8-U", L"\u0413\u0430\u0439\u043A\u0430 \u0407\u0457", "\xE7\xC1\xCA\xCB\xC1 \xB7\xA7"},
    {"IBM437", L"\u00BD \u00E9", "\xAB \x82"},
    {"IBM850", L"\u00D8 \u00E9", "\x9D \x82"},
    {"Shift_JIS", L"\u516D\u89D2\u30CA\u30C3\u30C8",
     "\x98Z\x8Ap\x83i\x83"
     "b\x83g"},
    {"EUC-KR", L"\uC721\uAC01 \uB108\uD2B8", "\xC0\xB0\xB0\xA2 \xB3\xCA\xC6\xAE"},
    {"Big5", L"\u87BA\u6BCD", "\xC1\xB3\xA5\xC0"},
    {"GB2312", L"\u516D\u89D2\u87BA\u6BCD", "\xC1\xF9\xBD\xC7\xC2\xDD\xC4\xB8"},
    {"GBK", L"\u516D\u89D2\u87BA\u5E3D", "\xC1\xF9\xBD\xC7\xC2\xDD\xC3\xB1"},
    {"GB18030", L"\u516D\u89D2\u87BA\u6BCD \u0416", "\xC1\xF9\xBD\xC7\xC2\xDD\xC4\xB8 \xA7\xA8"},
};

std::string DocumentIn(const std::string& encoding, const std::string& content)
{
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n<a x=\"" + content + "\">" +
           content + "</a>\n";
}

TEST(Encodings, AreTheSameOnEveryPlatform)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"a.xml");
    for (const auto& [name, text, bytes] : kEncodings) {
        SCOPED_TRACE(name);
        if (std::string_view(name) == "GB18030" && !kSystemKnowsGb18030) {
            continue;
        }
        const std::string document = DocumentIn(name, bytes);
        ASSERT_TRUE(ReplaceFileContent(path, document));
        XMLParser parser;
        EXPECT_TRUE(parser.LoadXmlDocument(path.c_str()));
        CString read;
        EXPECT_TRUE(parser.GetRootNode().GetNodeText(read));
        EXPECT_EQ(platform::WideToUtf8(read), platform::WideToUtf8(text));
        EXPECT_TRUE(parser.SaveXmlDocument(path.c_str(), false));
        std::string saved;
        EXPECT_TRUE(ReadWholeFile(path, saved));
        EXPECT_EQ(saved, document);
    }
}

// The converters get a document in pieces, which end anywhere in a character.
TEST(Encodings, LongTextsSurviveTheEndsOfPieces)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"a.xml");
    for (const auto& [name, text, bytes] : kEncodings) {
        SCOPED_TRACE(name);
        if (std::string_view(name) == "GB18030" && !kSystemKnowsGb18030) {
            continue;
        }
        CString expected;
        std::string content;
        for (std::size_t i = 0; i < 20000; ++i) {
            expected.append(text).append(i % 3, L'.');
            content.append(bytes).append(i % 3, '.');
        }
        const std::string document = DocumentIn(name, content);
        ASSERT_TRUE(ReplaceFileContent(path, document));
        XMLParser parser;
        ASSERT_TRUE(parser.LoadXmlDocument(path.c_str()));
        CString read;
        EXPECT_TRUE(parser.GetRootNode().GetNodeText(read));
        EXPECT_TRUE(read == expected);
        EXPECT_TRUE(parser.SaveXmlDocument(path.c_str(), false));
        std::string saved;
        EXPECT_TRUE(ReadWholeFile(path, saved));
        EXPECT_TRUE(saved == document);
    }
}

TEST(Encodings, WhatOneLacksBecomesAReference)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"a.xml");
    for (const char* name : {"windows-1252", "KOI8-R", "GBK", "Big5"}) {
        XMLParser parser(L"<a>\U0001F529 \u0E2D</a>");
        ASSERT_TRUE(parser.CreateXmlDocument(platform::Utf8ToWide(name).c_str()));
        ASSERT_TRUE(parser.SaveXmlDocument(path.c_str(), false));
        std::string saved;
        ASSERT_TRUE(ReadWholeFile(path, saved));
        EXPECT_NE(saved.find(">&#128297; &#3629;</a>"), std::string::npos) << name << saved;
    }
}

TEST(Encodings, BytesWithoutAMeaningAreRefused)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"a.xml");
    const std::pair<const char*, const char*> cases[] = {
        {"windows-1252", "\x81"},  {"windows-1253", "\xD2"}, {"windows-874", "\xDB"},
        {"Shift_JIS", "\x81\x20"}, {"Big5", "\xA1\x20"},     {"EUC-KR", "\xB0\x20"},
    };
    for (const auto& [name, bytes] : cases) {
        ASSERT_TRUE(ReplaceFileContent(path, DocumentIn(name, bytes)));
        XMLParser parser;
        EXPECT_FALSE(parser.LoadXmlDocument(path.c_str())) << name;
    }
}

} // namespace
} // namespace encap
