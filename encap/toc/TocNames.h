#pragma once

#include "encap/family/Vocabulary.h"

// The names of a table of contents that family documents do not have.
namespace encap::toc {

inline constexpr Name kTableOfContents = MakeName<"TableOfContents">();
inline constexpr Name kFamilies = MakeName<"Families">();
inline constexpr Name kFamilyReference = MakeName<"FamilyReference">();
inline constexpr Name kLastModifiedTime = MakeName<"LastModifiedTime">();
inline constexpr Name kSourceRevisionId = MakeName<"SourceRevisionId">();

/// Every category of the document, at any depth.
inline constexpr const wchar_t* kAllCategories = L"//Category";

} // namespace encap::toc
