#pragma once

#include "encap/foundation/StringUtil.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"

#include <filesystem>
#include <set>
#include <string>
#include <system_error>

/// An empty folder for one test, removed with the object.
class TemporaryFolder {
public:
    TemporaryFolder()
        : m_path(encap::platform::WithTrailingSeparator(encap::platform::TemporaryDirectory()) +
                 L"encap-test-" + CStringUtil::NewGuid())
    {
        std::filesystem::create_directories(Native());
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(Native(), ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] CString File(const CString& name) const { return m_path + L"/" + name; }
    [[nodiscard]] std::filesystem::path Native(const CString& name = {}) const
    {
        const std::string utf8 = encap::platform::WideToUtf8(name.empty() ? m_path : File(name));
        return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
    }
    [[nodiscard]] std::set<std::string> Names() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Native())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

private:
    CString m_path;
};
