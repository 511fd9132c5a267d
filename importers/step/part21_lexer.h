#pragma once

#include "importers/step/part21_error.h"
#include "importers/step/part21_record.h"

#include <string>
#include <string_view>

namespace qn::step {

/// Moves through the text of an exchange file token by token. Blanks, line breaks and comments
/// between tokens are passed over. Every failure is a ReadFailure that names the line.
class Lexer {
public:
    explicit Lexer(std::string_view text, std::size_t at = 0) : text_(text), at_(at) {}

    std::size_t Position() const { return at_; }
    bool AtEnd() const { return at_ >= text_.size(); }
    /// The next character, '\0' at the end.
    char Peek() const { return AtEnd() ? '\0' : text_[at_]; }

    void SkipBlanks();
    /// Takes `c` after blanks if it comes next.
    bool Accept(char c);
    void Expect(char c, std::string_view where);
    std::string_view Keyword();  ///< may be empty
    EntityId Number();           ///< digits after '#'
    Param Parameter(int depth);
    /// The parameters from "(" to ")" inclusive.
    Params ParameterList(int depth);
    /// Goes behind the next ';' that is neither in a string nor in a comment.
    /// False if the text ends before.
    bool SkipStatement() { return SkipTo(';'); }
    /// Goes behind the next '#' that is neither in a string nor in a comment. False if there is none.
    bool SkipToReference() { return SkipTo('#'); }
    /// Goes behind the ')' that closes the '(' here. False if the text ends before.
    bool SkipParentheses();

    [[noreturn]] void Fail(const std::string& cause) const;
    [[noreturn]] void FailAt(std::size_t position, const std::string& text,
                             Cause cause = Cause::kMalformed) const;

private:
    bool SkipTo(char wanted);
    bool SkipComment();
    bool SkipString(char quote);
    Param Quoted();
    Param Numeric();
    Param Enumeration();

    std::string_view text_;
    std::size_t at_;
};

}  // namespace qn::step
