#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/TextFormat.h"
#include "encap/platform/Encoding.h"
#include "encap/xml/Nodes.h"
#include "encap/xml/Texts.h"
#include "encap/xml/XMLNode.h"

#include <limits>

using encap::NodeOf;
using encap::Tree;

namespace {

constexpr int kDigitsOfDouble = 15;

bool HasProperties(const XMLNode& node)
{
    return node.IsNode() && NodeOf(node)->type == XML_ELEMENT_NODE;
}

/// The value of an attribute or of a namespace declaration; false when there is none.
bool FindValue(const xmlNode* element, std::string_view name, std::string_view& value)
{
    if (const xmlAttr* attribute = encap::FindAttribute(element, name)) {
        value = encap::ValueOf(attribute);
        return true;
    }
    if (const xmlNs* declared = encap::FindDeclaration(element, name)) {
        value = encap::ViewOf(declared->href);
        return true;
    }
    return false;
}

/// A text that is a decimal number as a whole, without infinities and the like.
bool ReadWholeNumber(std::wstring_view text, double& number)
{
    const std::wstring_view digits = encap::TrimView(text);
    const encap::LeadingNumber read = encap::ReadLeadingNumber(digits);
    number = read.value;
    return read.consumed != 0 && read.consumed == digits.size() &&
           digits.find_first_not_of(L"0123456789+-.eE") == std::wstring_view::npos;
}

/// A declaration that goes leaves its users in the namespace: it is written where it is missing.
bool RemoveDeclaration(xmlNode* element, const xmlNs* declared)
{
    xmlNs** link = &element->nsDef;
    while (*link != declared) {
        link = &(*link)->next;
    }
    xmlNs* removed = *link;
    *link = removed->next;
    Tree& tree = Tree::Of(element);
    encap::FreeDeclaration(tree, removed);
    tree.NoteChange(element);
    return true;
}

struct TextOfVariant {
    CString operator()(std::monostate) const { return CString(); }
    CString operator()(bool value) const { return value ? L"-1" : L"0"; }
    CString operator()(int value) const { return encap::FormatInteger(value); }
    CString operator()(double value) const { return encap::FormatGeneral(value, kDigitsOfDouble); }
    CString operator()(const CString& value) const { return value; }
};

} // namespace

bool XMLNode::GetProperties(CStringArray& names) const
{
    if (!HasProperties(*this)) {
        return false;
    }
    const xmlNode* element = NodeOf(*this);
    for (const xmlNs* space = element->nsDef; space != nullptr; space = space->next) {
        const CString prefix = encap::platform::Utf8ToWide(encap::ViewOf(space->prefix));
        names.push_back(prefix.empty() ? CString(L"xmlns") : L"xmlns:" + prefix);
    }
    for (xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        names.push_back(
            encap::platform::Utf8ToWide(encap::QualifiedName(encap::AsNode(attribute))));
    }
    return true;
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the node
bool XMLNode::RemoveProperty(const wchar_t* name)
{
    if (!HasProperties(*this) || name == nullptr) {
        return false;
    }
    const encap::Utf8Text wanted(name);
    xmlNode* element = NodeOf(*this);
    if (xmlAttr* attribute = encap::FindAttribute(element, wanted.View())) {
        Tree::Of(element).Remove(encap::AsNode(attribute));
    } else if (const xmlNs* declared = encap::FindDeclaration(element, wanted.View())) {
        RemoveDeclaration(element, declared);
    }
    return true;
}

bool XMLNode::GetProperty(const wchar_t* name, VARIANT* value) const
{
    if (value == nullptr) {
        return false;
    }
    CString text;
    const bool isThere = GetProperty(name, text);
    *value = isThere ? VARIANT(std::move(text)) : VARIANT();
    return isThere;
}

bool XMLNode::GetProperty(const wchar_t* name, CString& value) const
{
    value.clear();
    std::string_view text;
    if (!HasProperties(*this) || name == nullptr ||
        !FindValue(NodeOf(*this), encap::Utf8Text(name).View(), text)) {
        return false;
    }
    encap::platform::AssignWide(value, text);
    return true;
}

bool XMLNode::GetProperty(const wchar_t* name, CComBSTR& value) const
{
    CString text;
    const bool isThere = GetProperty(name, text);
    value = std::move(text);
    return isThere;
}

bool XMLNode::GetProperty(const wchar_t* name, int& value) const
{
    CString text;
    value = 0;
    if (!GetProperty(name, text)) {
        return false;
    }
    const std::optional<int32_t> number = encap::ReadInteger(text);
    value = number.value_or(0);
    return number.has_value();
}

bool XMLNode::GetProperty(const wchar_t* name, short& value) const
{
    using Limits = std::numeric_limits<short>;
    int number = 0;
    const bool isNumber = GetProperty(name, number);
    const bool fits = isNumber && number >= Limits::min() && number <= Limits::max();
    value = fits ? static_cast<short>(number) : short{0};
    return fits;
}

bool XMLNode::GetProperty(const wchar_t* name, long& value) const
{
    int number = 0;
    const bool isNumber = GetProperty(name, number);
    value = number;
    return isNumber;
}

bool XMLNode::GetProperty(const wchar_t* name, double& value) const
{
    CString text;
    const bool isThere = GetProperty(name, text);
    value = isThere ? encap::ReadLeadingNumber(text).value : 0.0;
    return isThere;
}

bool XMLNode::GetProperty(const wchar_t* name, bool& value) const
{
    CString text;
    const bool isThere = GetProperty(name, text);
    double number = 0.0;
    value = isThere &&
            (ReadWholeNumber(text, number) ? number != 0.0 : encap::EqualNoCase(text, L"true"));
    return isThere;
}

bool XMLNode::GetStrBoolProperty(const wchar_t* name, bool& value) const
{
    CString text;
    const bool isThere = GetProperty(name, text);
    value = isThere && encap::EqualNoCase(text, L"true");
    return isThere;
}

bool XMLNode::SetProperty(const wchar_t* name, const wchar_t* value)
{
    return value != nullptr && SetProperty(name, CString(value));
}

bool XMLNode::SetProperty(const wchar_t* name, wchar_t* value)
{
    return SetProperty(name, static_cast<const wchar_t*>(value));
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the node
bool XMLNode::SetProperty(const wchar_t* name, const CString& value)
{
    return HasProperties(*this) && name != nullptr &&
           encap::SetAttribute(NodeOf(*this), encap::Utf8Text(name).View(),
                               encap::DocumentText(value));
}

bool XMLNode::SetProperty(const wchar_t* name, int value)
{
    return SetProperty(name, encap::FormatInteger(value));
}

bool XMLNode::SetProperty(const wchar_t* name, long value)
{
    return SetProperty(name, encap::FormatInteger(value));
}

bool XMLNode::SetProperty(const wchar_t* name, double value)
{
    return SetProperty(name, encap::FormatFixed12(value));
}

bool XMLNode::SetProperty(const wchar_t* name, bool value)
{
    return SetProperty(name, TextOfVariant()(value));
}

bool XMLNode::SetProperty(const wchar_t* name, const VARIANT& value)
{
    return !std::holds_alternative<std::monostate>(value) &&
           SetProperty(name, std::visit(TextOfVariant(), value));
}

bool XMLNode::SetStrBoolProperty(const wchar_t* name, bool value)
{
    return SetProperty(name, value ? L"true" : L"false");
}
