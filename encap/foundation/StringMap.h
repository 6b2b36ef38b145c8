#pragma once

#include "encap/foundation/CaseFolding.h"

#include <string_view>
#include <unordered_map>

namespace encap {

struct NoCaseHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const { return HashNoCase(text); }
};

struct NoCaseEqual {
    using is_transparent = void;
    bool operator()(std::wstring_view left, std::wstring_view right) const
    {
        return EqualNoCase(left, right);
    }
};

/// Exact hashing for maps that are searched with views.
struct ExactHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const
    {
        return std::hash<std::wstring_view>{}(text);
    }
};

struct ExactEqual {
    using is_transparent = void;
    bool operator()(std::wstring_view left, std::wstring_view right) const { return left == right; }
};

template <class T>
using ExactMap = std::unordered_map<CString, T, ExactHash, ExactEqual>;

} // namespace encap

/// A map keyed by text without regard to case; look-ups take views, iteration has no order.
template <class T>
using CStringMapTo = std::unordered_map<CString, T, encap::NoCaseHash, encap::NoCaseEqual>;
