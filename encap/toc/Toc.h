#pragma once

#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"
#include "encap/xml/XMLNodeArray.h"
#include "encap/xml/XMLParser.h"

#include <map>

/// The table of contents of a content library: its families and its tree of categories, by internal
/// name. Shares the document with the parser that it was given; later edits of the document are not
/// followed until SetToc is called again. Names are compared exactly, and maps run in the order of
/// the names, not of the document; of two elements with one name the last is kept. Null texts count
/// as empty. One thread at a time per document.
class ENCAP_API CToc {
public:
    /// No document; every answer is false or 0.
    CToc();
    /// A copy shares the document and goes on where the other's iterations are.
    CToc(const CToc& other);
    CToc& operator=(const CToc& other);
    virtual ~CToc();

    // The document.
    void SetToc(const XMLParser& toc);
    XMLParser GetToc() const;
    XMLDocumentHandle GetDocument() const;

    // Look-ups. node is as it was when the answer is false.
    int GetCategoryCount() const;
    bool GetFamilyInfo(const wchar_t* internalName, XMLNode& node) const;
    bool GetCategoryInfo(const wchar_t* internalName, XMLNode& node) const;

    // Iterations over the families and over the categories, each with a place of its own. False at
    // the end, where it stays, and before the first reset.
    void ResetIter();
    bool NextNode(XMLNode& node);
    void ResetCatIter();
    bool NextCategory(XMLNode& node);

    // The tree.
    /// Replaces path by the category and the categories around it, up to the first level. False,
    /// with an empty path, for an unknown category.
    bool GetCategoryPath(const wchar_t* internalName, XMLNodeArray& path) const;
    /// False, with an empty array, when there is none.
    bool GetFirstLevelCategories(XMLNodeArray& categories) const;
    /// Adds, for each family that a category references, the category: of several the last one in
    /// the order of names. With skipHidden the hidden categories do not count. Always true.
    bool GetFam2CatMap(std::map<CString, CString>& familyToCategory, bool skipHidden) const;

private:
    using NodeMap = std::map<CString, XMLNode, std::less<>>;

    /// A place in a map that survives every change of the map: the name of the last entry given.
    struct Cursor {
        bool isFirstStep = true;
        bool isRunning = false;
        CString name;
    };

    bool CreateFamiliesMap();
    bool CreateCategoryMap();
    static bool GetInfo(const NodeMap& map, const wchar_t* key, XMLNode& node);
    static void Reset(Cursor& cursor);
    static bool Next(const NodeMap& map, Cursor& cursor, XMLNode& node);

    XMLDocumentHandle m_document;
    NodeMap m_families;
    NodeMap m_categories;
    Cursor m_familyCursor;
    Cursor m_categoryCursor;
};
