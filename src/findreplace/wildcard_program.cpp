#include "findreplace/wildcard_program.h"

#include <algorithm>
#include <limits>

#include "findreplace/request.h"
#include "findreplace/wildcard.h"

namespace QVFindAndReplace {
namespace {

using QVUtils::CaseFolding;
namespace RegexError = std::regex_constants;

constexpr uint32_t kUnbounded = std::numeric_limits<uint32_t>::max();
constexpr size_t kMaxStates = 100'000;

/// How often the term before it is repeated: at least `least` times, at most `most`.
struct Quantifier {
    uint32_t least;
    uint32_t most;
};

/// Reads a pattern. `folding`: null where case counts.
template <class CharT>
class Compiler {
public:
    using Text = std::basic_string<CharT>;

    Compiler(const Text& pattern, const CaseFolding<CharT>* folding) : m_pattern(pattern), m_folding(folding) {}

    Compiled<CharT> Compile() {
        Compiled<CharT> result;
        while (!AtEnd()) {
            if (Peek() == CharT('{')) Fail(RegexError::error_paren);  // only the pattern's start has nothing to count
            std::optional<Text> flat = Text(1, Peek());
            Program<CharT> term = CompileAtom(Next());
            while (!AtEnd() && Peek() == CharT('{')) {
                const Quantifier quantifier = ReadQuantifier();
                term = Repeat(term, quantifier);
                if (flat) flat = Flattened(*flat, quantifier);
            }
            Append(result.program, term);
            TakeRun(flat, result.required);
            if (result.flat && flat)
                *result.flat += *flat;
            else
                result.flat.reset();
        }
        TakeRun(std::nullopt, result.required);
        return result;
    }

private:
    using S = State<CharT>;

    bool AtEnd() const { return m_position == m_pattern.size(); }
    CharT Peek() const { return m_pattern[m_position]; }
    CharT Next() { return m_pattern[m_position++]; }

    Program<CharT> CompileAtom(CharT unit) const {
        if (unit == CharT('?')) return {{S::Kind::Any}};
        if (unit == CharT('*')) return {{S::Kind::Split, 0, 3}, {S::Kind::Any}, {S::Kind::Jump, 0, -2}};
        return {{S::Kind::Unit, m_folding ? (*m_folding)(unit) : unit}};
    }

    static bool IsDigit(CharT unit) { return unit >= CharT('0') && unit <= CharT('9'); }

    Quantifier ReadQuantifier() {
        Next();  // the brace
        if (AtEnd() || !IsDigit(Peek())) Fail(RegexError::error_badbrace);
        Quantifier quantifier = {};
        quantifier.least = quantifier.most = ReadCount();
        if (ReadsOn(CharT(','))) quantifier.most = !AtEnd() && IsDigit(Peek()) ? ReadCount() : kUnbounded;
        if (!ReadsOn(CharT('}'))) Fail(Peek() == CharT(',') ? RegexError::error_brace : RegexError::error_badbrace);
        if (quantifier.most < quantifier.least) Fail(RegexError::error_badbrace);
        return quantifier;
    }

    /// Takes `unit` when it comes next. The pattern's end inside braces is an error of its own.
    bool ReadsOn(CharT unit) {
        if (AtEnd()) Fail(RegexError::error_brace);
        if (Peek() != unit) return false;
        Next();
        return true;
    }

    /// Larger counts than any program may have states need no telling apart.
    uint32_t ReadCount() {
        uint32_t count = 0;
        while (!AtEnd() && IsDigit(Peek())) {
            count = count * 10 + static_cast<uint32_t>(Next() - CharT('0'));
            count = std::min<uint32_t>(count, kMaxStates + 1);
        }
        return count;
    }

    /// Copies of a term: the required ones in a row; then one that repeats, or the optional ones, each inside the one
    /// before it. Longer ways come first everywhere: all counts are greedy.
    Program<CharT> Repeat(const Program<CharT>& term, Quantifier quantifier) const {
        const size_t optional = quantifier.most == kUnbounded ? 1 : quantifier.most - quantifier.least;
        // The space needed is known beforehand, and refused before any of it is taken.
        CheckSize(term.size() * quantifier.least + (term.size() + 1) * optional);
        Program<CharT> result;
        for (uint32_t i = 0; i < quantifier.least; ++i) Append(result, term);
        const auto length = static_cast<int32_t>(term.size());
        if (quantifier.most == kUnbounded) {
            result.push_back({S::Kind::Split, 0, length + 2});
            Append(result, term);
            result.push_back({S::Kind::Jump, 0, -length - 1});
            return result;
        }
        for (size_t left = optional; left > 0; --left) {
            result.push_back({S::Kind::Split, 0, static_cast<int32_t>(left) * (length + 1)});
            Append(result, term);
        }
        return result;
    }

    /// A counted text without the count. Nothing where characters may be there or not, which no plain pattern says.
    static std::optional<Text> Flattened(const Text& text, Quantifier quantifier) {
        const auto consistsOf = [&](CharT unit) { return text.find_first_not_of(unit) == Text::npos; };
        if (quantifier.least == quantifier.most) {
            Text repeated;
            for (uint32_t i = 0; i < quantifier.least; ++i) repeated += text;
            return repeated;
        }
        if (consistsOf(CharT('*'))) return text;  // one star takes as much as many
        if (quantifier.most != kUnbounded || text != Text(1, CharT('?'))) return std::nullopt;
        return Text(quantifier.least, CharT('?')) + CharT('*');
    }

    /// Goes on with the run of characters that are there in every hit, or ends it: then the longest is kept.
    void TakeRun(const std::optional<Text>& flat, Text& longest) {
        if (flat && flat->find_first_of(Text{CharT('?'), CharT('*')}) == Text::npos) {
            m_run += *flat;
            return;
        }
        if (m_run.size() > longest.size()) longest = m_run;
        m_run.clear();
    }

    void Append(Program<CharT>& program, const Program<CharT>& term) const {
        CheckSize(program.size() + term.size());
        program.insert(program.end(), term.begin(), term.end());
    }
    void CheckSize(size_t states) const {
        if (states > kMaxStates) Fail(RegexError::error_space);
    }

    [[noreturn]] void Fail(RegexError::error_type code) const {
        std::string shown;
        for (const CharT unit : m_pattern)
            shown += unit >= CharT(' ') && unit < CharT(0x7F) ? static_cast<char>(unit) : '.';
        throw WildcardError(code, shown);
    }

    const Text& m_pattern;
    const CaseFolding<CharT>* const m_folding;
    size_t m_position = 0;
    Text m_run;
};

}  // namespace

template <class CharT>
Compiled<CharT> CompileWildcard(const std::basic_string<CharT>& pattern, const CaseFolding<CharT>* folding) {
    return Compiler<CharT>(pattern, folding).Compile();
}

template Compiled<char> CompileWildcard(const std::basic_string<char>&, const CaseFolding<char>*);
template Compiled<WideChar> CompileWildcard(const std::basic_string<WideChar>&, const CaseFolding<WideChar>*);

}  // namespace QVFindAndReplace
