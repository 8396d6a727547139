// Regular expressions of renames: against the standard library's, with random expressions that are grown from the
// fuzzer's bytes or from a seed in them, or with the bytes as they are.
#include <random>

#include "fuzz/input.h"
#include "fuzz/standard_regex.h"

namespace QVFuzz {
namespace {

constexpr int kRegexSteps = 2000;
constexpr int kCasesOfASeed = 50;
constexpr size_t kLongestExpression = 100;  // for the standard engine, in units; and of texts
#ifdef _WIN32
constexpr size_t kStack = size_t{256} * 1024;
#else
constexpr size_t kStack = size_t{2048} * 1024;  // with sanitizers its frames are larger
#endif

/// Numbers from the bytes, and after their end some that vary, so that what is grown ends.
auto PickFrom(Input& input) {
    return [&input, after = size_t{0}](size_t below) mutable {
        if (input.IsAtEnd()) return ++after % below;
        return (below > 256 ? input.Number() : input.Byte()) % below;
    };
}

RegexCase CaseOf(Input& input, uint8_t shape) {
    if (shape & 1) return RegexMaker(PickFrom(input)).Make();
    RegexCase given;
    given.ignoresCase = (shape & 2) != 0;
    given.pattern = Widened<wchar_t>(input.Text());
    given.replacement = Widened<wchar_t>(input.Text());
    given.text = Widened<wchar_t>(input.Rest());
    return given;
}

void Compare(const RegexCase& given) {
    Require(CompareWithStandard(given, kRegexSteps, kStack) != RegexVerdict::Different,
            "what the standard engine finds");
}

/// What is too much for the standard engine. Ours ends, whatever it is given.
void RunAlone(const RegexCase& given) {
    try {
        const BatchRename::RegexProgram program = BatchRename::CompileRegex(given.pattern, given.ignoresCase);
        BatchRename::RegexMatcher matcher(program);
        matcher.Begin(given.text, kRegexSteps);
        if (!matcher.Search(0, {})) return;
        for (const BatchRename::RegexGroup& group : matcher.Groups())
            Require(!group.IsMatched() || (group.begin <= group.end && group.end <= given.text.size()), "within");
    } catch (const std::regex_error&) {
    }
}

}  // namespace

void RunRegex(Bytes bytes) {
    if (bytes.size() > 512) return;
    Input input(bytes);
    const uint8_t shape = input.Byte();
    if (shape & 4) {
        // Coverage is soon exhausted; then numbers count.
        std::mt19937 random(input.Number());
        RegexMaker maker([&random](size_t below) { return random() % below; });
        for (int at = 0; at < kCasesOfASeed; ++at) Compare(maker.Make());
        return;
    }
    const RegexCase given = CaseOf(input, shape);
    const bool isShort = given.pattern.size() <= kLongestExpression && given.text.size() <= kLongestExpression;
    isShort ? Compare(given) : RunAlone(given);
}

}  // namespace QVFuzz
