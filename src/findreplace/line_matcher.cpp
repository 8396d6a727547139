#include "findreplace/line_matcher.h"

#include <algorithm>

#include "findreplace/request.h"
#include "textio/byte_search.h"

namespace QVFindAndReplace {
namespace {

using QVUtils::CaseFolding;
using QVUtils::FindUnit;
using QVUtils::SequenceFinder;

/// What both plain matchers share: hits as long as the item, and the item's text as the quickest sign of a hit.
template <class CharT>
class PlainMatcher : public LineMatcher<CharT> {
public:
    using View = typename LineMatcher<CharT>::View;

    PlainMatcher(std::basic_string<CharT> item, const CaseFolding<CharT>* folding, bool stepsBack)
        : m_item(std::move(item)), m_finder(m_item, folding), m_folding(folding), m_stepsBack(stepsBack) {}

    const CharT* FindCandidate(View lines) const override {
        if (m_item.empty()) return nullptr;
        const CharT* const end = lines.data() + lines.size();
        const CharT* const hit = m_finder.FindFirst(lines.data(), end);
        return hit == end ? nullptr : hit;
    }

    // Which scan of the two it is makes a difference only for a hit that begins in the text and does not end in it.
    bool MayBeginIn(View text, View following) override {
        for (size_t start = 0; start < text.size(); ++start) {
            if (text[start] == CharT(0)) return true;  // it may end the search
            const size_t length = std::min(text.size() - start, m_item.size());
            const View rest = View(m_item).substr(length);
            if (IsSame(View(m_item).substr(0, length), text.substr(start, length)) &&
                (!m_stepsBack || IsSame(rest, following.substr(0, rest.size()))))
                return true;
        }
        return false;
    }

protected:
    bool IsSame(CharT left, CharT right) const {
        return m_folding ? (*m_folding)(left) == (*m_folding)(right) : left == right;
    }
    bool IsSame(View left, View right) const {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                          [this](CharT one, CharT other) { return IsSame(one, other); });
    }

    const std::basic_string<CharT> m_item;
    const SequenceFinder<CharT> m_finder;
    const CaseFolding<CharT>* const m_folding;
    const bool m_stepsBack;  // after a hit that came to nothing the search goes on after its first character
};

template <class CharT>
class ExactMatcher final : public PlainMatcher<CharT> {
public:
    using View = typename LineMatcher<CharT>::View;

    explicit ExactMatcher(std::basic_string<CharT> item) : PlainMatcher<CharT>(std::move(item), nullptr, true) {}

    bool Find(View text, Span& found) override {
        const CharT* const hit = this->FindCandidate(text);
        if (!hit || FindUnit(text.data(), hit, CharT(0)) != hit) return false;
        found = {static_cast<size_t>(hit - text.data()), this->m_item.size()};
        return true;
    }
};

template <class CharT>
class ScanningMatcher final : public PlainMatcher<CharT> {
public:
    using View = typename LineMatcher<CharT>::View;

    explicit ScanningMatcher(std::basic_string<CharT> item)
        : PlainMatcher<CharT>(std::move(item), Folding(), false), m_start(this->m_item.substr(0, 1), Folding()) {}

    bool Find(View text, Span& found) override {
        const auto& item = this->m_item;
        if (item.empty()) return false;
        const CharT* const end = text.data() + text.size();
        size_t matched = 0;
        for (const CharT* at = text.data(); at != end; ++at) {
            if (matched == 0) {
                at = m_start.FindFirst(at, end);
                if (at == end) return false;
            }
            matched = this->IsSame(*at, item[matched]) ? matched + 1 : 0;
            if (matched == item.size()) {
                found = {static_cast<size_t>(at - text.data()) + 1 - matched, matched};
                return true;
            }
        }
        return false;
    }

private:
    static const CaseFolding<CharT>* Folding() {
        return sizeof(CharT) > 1 ? &QVUtils::PlainCaseFolding<CharT>() : nullptr;
    }

    const SequenceFinder<CharT> m_start;
};

}  // namespace

template <class CharT>
std::unique_ptr<LineMatcher<CharT>> MakePlainMatcher(std::basic_string<CharT> item, bool ignoreCase) {
    if (ignoreCase) return std::make_unique<ScanningMatcher<CharT>>(std::move(item));
    return std::make_unique<ExactMatcher<CharT>>(std::move(item));
}

template std::unique_ptr<LineMatcher<char>> MakePlainMatcher(std::basic_string<char>, bool);
template std::unique_ptr<LineMatcher<WideChar>> MakePlainMatcher(std::basic_string<WideChar>, bool);

}  // namespace QVFindAndReplace
