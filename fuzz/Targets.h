#pragma once

#include <span>
#include <string_view>

// What hostile bytes are given to. Each target takes any input, uses the library as hosts do, and
// stops the program where a promise of the library does not hold. The fuzzers run one target each;
// the test of the kept inputs runs them all, in every build.
namespace encap::fuzz {

struct Target {
    const char* name; ///< of its seeds, its dictionary and its fuzzer
    void (*run)(std::string_view input);
};

[[nodiscard]] std::span<const Target> AllTargets();
/// Null for an unknown name.
[[nodiscard]] const Target* FindTarget(std::string_view name);

/// A family document, then strings documents, each behind a zero byte: everything that reads.
void RunFamily(std::string_view input);
/// A family file, for the checks of the command line.
void RunChecks(std::string_view input);
/// A strings document for a fixed family.
void RunStrings(std::string_view input);
/// A script of calls, foreign edits of the document and calls back from the host among them.
void RunEdits(std::string_view input);
/// A script of the edits that have a model to be compared with.
void RunModel(std::string_view input);
/// A query, then behind a line feed a document: the direct walk and XPath give the same.
void RunXPath(std::string_view input);
/// A range text or formula, as the formula and the cell of every kind of column.
void RunFormulas(std::string_view input);
/// A unit, then behind a line feed an expression of the standalone provider, or its materials.
void RunLanguage(std::string_view input);
/// A value cache file.
void RunCache(std::string_view input);
/// A table of contents.
void RunToc(std::string_view input);
/// An ICO file, a BMP file or an executable.
void RunImages(std::string_view input);

} // namespace encap::fuzz
