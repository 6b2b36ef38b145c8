#pragma once

#include "encap/foundation/Types.h"
#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/xml/XMLParser.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace encap::fuzz {

/// Stops the program, with the promise that was broken, unless it holds.
void Require(bool holds, const char* promise);

/// A document read from the bytes of a file, as the library reads files; empty when they do not
/// parse.
[[nodiscard]] XMLParser ParseBytes(std::string_view bytes);

[[nodiscard]] CString XmlOf(const XMLParser& document);

/// One provider for all inputs: reading the unit database takes longer than most of them.
[[nodiscard]] CStandaloneEvaluatorProvider& SharedProvider();

/// The two halves of an input, around the first occurrence of the separator; all of it is the first
/// half where there is none.
[[nodiscard]] std::pair<std::string_view, std::string_view> SplitAt(std::string_view input,
                                                                    char separator);

/// Decisions and texts drawn from the bytes of an input; zeros and empty texts behind its end.
class Choices {
public:
    explicit Choices(std::string_view input) : m_rest(input) {}

    [[nodiscard]] bool AtEnd() const { return m_rest.empty(); }
    [[nodiscard]] uint8_t Byte();
    [[nodiscard]] uint32_t Number();
    /// 0 to limit - 1; 0 when the limit is below 2.
    [[nodiscard]] int Below(int limit);
    [[nodiscard]] bool Chance(int of) { return Below(of) == 1; }
    /// Up to 31 bytes, or where the length says so 300 repetitions of them.
    [[nodiscard]] CString Text();

private:
    std::string_view m_rest;
};

} // namespace encap::fuzz
