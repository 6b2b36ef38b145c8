#pragma once

#include "encap/icons/Bytes.h"
#include "encap/icons/Icons.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"
#include "encap/platform/MessageBox.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/PlatformFacts.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

/// Keeps the messages that are shown while it lives.
class ShownMessages {
public:
    ShownMessages()
        : m_previous(encap::platform::SetMessageBoxHook(
              [this](const encap::platform::MessageBoxRequest& request) {
                  m_requests.push_back(request);
              }))
    {
    }
    ~ShownMessages() { encap::platform::SetMessageBoxHook(m_previous); }
    ShownMessages(const ShownMessages&) = delete;
    ShownMessages& operator=(const ShownMessages&) = delete;

    /// The texts since the last call; each must have had this caption and owner.
    std::vector<CString> Take(const CString& caption, bool owned)
    {
        std::vector<CString> texts;
        for (const auto& request : m_requests) {
            EXPECT_EQ(request.caption, caption);
            EXPECT_EQ(request.owned, owned);
            texts.push_back(request.text);
        }
        m_requests.clear();
        return texts;
    }

private:
    std::vector<encap::platform::MessageBoxRequest> m_requests;
    encap::platform::MessageBoxHook m_previous;
};

using Texts = std::vector<CString>;

/// Bytes of code page 936 widened one to a character.
inline CString Widen(const std::string& bytes)
{
    CString text;
    for (const char byte : bytes) {
        text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(byte)));
    }
    return text;
}

struct IconDeleter {
    void operator()(ICONRESOURCE* icon) const { FreeIconResource(icon); }
};
using IconPointer = std::unique_ptr<ICONRESOURCE, IconDeleter>;

struct HandleDeleter {
    void operator()(HICON icon) const { ReleaseIcon(icon); }
};
using HandlePointer = std::unique_ptr<HICON__, HandleDeleter>;

inline CString Fixture(const char* name)
{
    return encap::platform::Utf8ToWide(std::string(ENCAP_TEST_DATA "/icons/") + name);
}

inline std::string FixtureBytes(const char* name)
{
    std::string bytes;
    EXPECT_TRUE(encap::platform::ReadWholeFile(Fixture(name), bytes)) << name;
    return bytes;
}

/// A copy of exactly this length, so that a sanitizer sees a read past its end.
inline std::vector<unsigned char> Prefix(const std::string& bytes, std::size_t length)
{
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)};
}

inline std::string Le16(uint32_t value)
{
    return {static_cast<char>(value & 255), static_cast<char>(value >> 8 & 255)};
}

inline std::string Le32(uint32_t value)
{
    return Le16(value & 0xFFFF) + Le16(value >> 16);
}

/// A bitmap information header.
inline std::string InfoHeader(uint32_t width, uint32_t height, uint32_t bits,
                              uint32_t compression = 0, uint32_t coloursUsed = 0)
{
    return Le32(40) + Le32(width) + Le32(height) + Le16(1) + Le16(bits) + Le32(compression) +
           Le32(0) + Le32(0) + Le32(0) + Le32(coloursUsed) + Le32(0);
}

inline std::string IcoHeader(uint32_t count, uint32_t type = 1, uint32_t reserved = 0)
{
    return Le16(reserved) + Le16(type) + Le16(count);
}

inline std::string IcoEntry(uint32_t byteCount, uint32_t offset)
{
    return Le32(0) + Le16(1) + Le16(8) + Le32(byteCount) + Le32(offset);
}

inline void WriteBytes(const CString& file, const std::string& bytes)
{
    ASSERT_TRUE(encap::platform::ReplaceFileContent(file, bytes));
}
