#pragma once

#include "encap/foundation/Types.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace encap::cli {

/// The arguments of one command: which there are, what the help says about them, and the variables
/// that they go to, which must outlive the object. Names are written as "--format" or
/// "-o,--output". A later use of an option that takes one value replaces an earlier one.
class Options {
public:
    Options(const std::string& command, const std::string& summary);
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;
    ~Options();

    // Required arguments without a name, in the order of their declaration.
    void Argument(CString& value, const std::string& name, const std::string& help);
    /// One or more; the last to be declared.
    void Arguments(std::vector<CString>& values, const std::string& name, const std::string& help);

    void Flag(bool& value, const std::string& names, const std::string& help);
    void Text(CString& value, const std::string& names, const std::string& valueName,
              const std::string& help);
    /// Holds nothing unless the option is given: an empty text can be given.
    void Text(std::optional<CString>& value, const std::string& names, const std::string& valueName,
              const std::string& help);
    /// May be given more than once.
    void Texts(std::vector<CString>& values, const std::string& names, const std::string& valueName,
               const std::string& help);
    /// Takes two values and may be given more than once.
    void Pairs(std::vector<std::pair<CString, CString>>& values, const std::string& names,
               const std::string& valueNames, const std::string& help);
    /// The index of one of the words; anything else is refused.
    void Choice(int& index, const std::string& names, const std::vector<std::string>& words,
                const std::string& help);
    /// A whole number within bounds, both included.
    void Number(int& value, const std::string& names, const std::string& valueName, int least,
                int most, const std::string& help);
    /// A word that must stand before the arguments declared on what is given back, as "list" in
    /// "encap icon list FILE". With one such word, one of all that are declared is required, and
    /// chosen is called for the one that is given. Lives as long as this object.
    Options& Subcommand(const std::string& name, const std::string& summary,
                        std::function<void()> chosen);
    /// A paragraph at the end of the help.
    void Footer(const std::string& text);

    /// Reads the arguments (UTF-8) into the variables. False when help was asked for: help is then
    /// the text. Throws UsageError.
    [[nodiscard]] bool Parse(const std::vector<std::string>& arguments, std::string& help);

private:
    struct State;
    explicit Options(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

} // namespace encap::cli
