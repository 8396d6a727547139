#include "reliability/host_calls.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "sdk/host_services.h"
#include "support/dialog_driver.h"

namespace QVTest {
namespace {

using namespace Quorvane::SDK;

// What slots of the host's classes do that do not answer with a number or nothing: they give an object (o), one that is
// to be given back (+), a handle (h) or a text (t), give back that argument (-; 0 is the object itself), fill it as a
// buffer (b), record (p, c) or number (n).
const std::string kOddSlots =
    "|HostServices 15t0 16t0 34o0 35o0 36o0 42+0 44o0 45b1 63+0 65-1 129+0 130+0 133+0 147b2 148c1|CommandFactory 1h0"
    "|MenuBuilder 0h0 1h0 2h0 4h0 7h0|CustomCommandRegistry 1o0|CustomCommandCall 1t0 2n2|ExtensionSettings 1b4 2n4"
    "|Progress 2-0|ChoiceList 2t0 14-0|XmlService 1+0 2+0 4b2 29-0|XmlDocument 0o0 1o0 2-0"
    "|XmlElement 0b1 1o0 2o0 3b1 4b2 5o0|FileList 4o0 12-0|FileItem 0b1 2b1 3b1 10p3 12-0 35p3"
    "|FileOperations 17+0 64+0 65-1 68b4 69b2|ElevatedChannel 9+0|RequestWriter 5h0 7-0";

struct Slot {
    size_t number = 0;
    char kind = ' ';
    size_t argument = 0;
    bool Is(const char* kinds) const { return std::string_view(kinds).find(kind) != std::string_view::npos; }
};
using Arguments = uintptr_t[9];  // the object first; the longest log line has no more
enum Fault : uint8_t { Throws, GivesNothing, GivesNonsense, Refuses };

struct Round {
    std::string wrong = {};  // the call that goes wrong, the next one after so many of the same name: repeated acts
    size_t before = 0;       // may make fewer of others
    Fault fault = {};
    std::function<void(const std::string&)> onCall = {};
    std::vector<std::string> calls = {};
    std::string failed = {};
    std::multiset<uintptr_t> open = {};
    size_t givenBackInVain = 0;
};
// What plain functions, in the place of all slots of the objects that are watched, know.
std::recursive_mutex g_lock;
std::map<uintptr_t, std::pair<std::string, void**>> g_objects;  // their class and its table
std::optional<Round> g_round;

size_t CountOf(const std::string& call, std::span<const std::string> calls) {
    return static_cast<size_t>(std::count(calls.begin(), calls.end(), call));
}

void Begin(std::optional<Round> round) {
    const std::lock_guard lock(g_lock);
    g_round = std::move(round);
}

Slot SlotOf(const std::string& className, size_t number) {
    const size_t begin = std::min(kOddSlots.find('|' + className), kOddSlots.size());
    std::istringstream odd(kOddSlots.substr(begin));
    odd.ignore(static_cast<std::streamsize>(className.size()) + 1);
    for (Slot slot; odd >> slot.number >> slot.kind >> slot.argument;)
        if (slot.number == number) return slot;
    return {};
}

uintptr_t AnswerWrongly(Fault fault, const Slot& slot, const Arguments& given) {
    if (fault == Throws) throw 1;
    if (fault == GivesNothing) return 0;
    if (fault == Refuses) return slot.Is("o+ht") ? 0 : ERROR_INVALID_FUNCTION;
    const uintptr_t out = given[slot.argument];
    if (slot.Is("b"))
        std::memset(reinterpret_cast<void*>(out), 'x', sizeof(wchar_t) * uint32_t(given[slot.argument + 1]));
    if (slot.Is("n")) std::memset(reinterpret_cast<void*>(out), 0xFF, sizeof(uint32_t));
    if (slot.Is("p")) std::memset(reinterpret_cast<void*>(out), 0xFF, sizeof(StoredPropertyValue));
    if (slot.Is("c")) reinterpret_cast<ChoiceRequest*>(out)->position = 0xFFFFFFFF;
    if (slot.Is("t")) return reinterpret_cast<uintptr_t>(L"%s%d%|<");
    if (slot.Is("h")) return 0;
    return slot.Is("o+") ? reinterpret_cast<uintptr_t>(HostCalls::Nothing()) : 0xFFFFFF01;  // true as well
}

/// The host's own classes are final: what comes through a table comes from the library.
template <size_t number>
uintptr_t Replacement(uintptr_t object, uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d, uintptr_t e, uintptr_t f,
                      uintptr_t g, uintptr_t h) {
    std::unique_lock lock(g_lock);
    const auto [class_, table] = g_objects[object];
    if (!table) return 0;  // an object that does nothing
    const auto original = reinterpret_cast<decltype(&Replacement<number>)>(table[number]);
    if (!g_round) {
        lock.unlock();
        return original(object, a, b, c, d, e, f, g, h);
    }
    const Arguments given = {object, a, b, c, d, e, f, g, h};
    const Slot slot = SlotOf(class_, number);
    const std::string call = class_ + " " + std::to_string(number);
    const bool fails = call == g_round->wrong && CountOf(call, g_round->calls) == g_round->before;
    const auto [fault, onCall] = std::pair(g_round->fault, g_round->onCall);
    g_round->calls.push_back(call);
    if (fails) g_round->failed = call;
    if (slot.Is("-") && given[slot.argument] != reinterpret_cast<uintptr_t>(HostCalls::Nothing())) {
        const auto found = g_round->open.find(given[slot.argument]);
        if (found == g_round->open.end())
            ++g_round->givenBackInVain;
        else
            g_round->open.erase(found);
    }
    lock.unlock();
    uintptr_t answer = fails && !slot.Is("-") ? 0 : original(object, a, b, c, d, e, f, g, h);
    if (fails) return AnswerWrongly(fault, slot, given);
    lock.lock();
    if (answer != 0 && slot.Is("o+")) HostCalls::Watch(reinterpret_cast<void*>(answer));
    if (answer != 0 && slot.Is("+") && g_round) g_round->open.insert(answer);
    lock.unlock();
    if (onCall) onCall(call);
    return answer;
}

void** Replacements() {
    static auto table = []<size_t... numbers>(std::index_sequence<numbers...>) {
        return std::array{reinterpret_cast<void*>(Replacement<numbers>)...};
    }
    (std::make_index_sequence<149>());  // as many as the longest interface has
    return table.data();
}

}  // namespace

HostCalls::~HostCalls() {
    Begin({});
}

void* HostCalls::Nothing() {
    static void** table = Replacements();
    return &table;
}

void HostCalls::Watch(void* object) {
    const std::lock_guard lock(g_lock);
    void**& table = *static_cast<void***>(object);
    if (table == Replacements()) return;
    const std::string type = static_cast<const std::type_info*>(table[-1])->name();  // "N6QVHost8FileItemE"
    const size_t name = type.find_last_of("0123456789") + 1;
    g_objects[reinterpret_cast<uintptr_t>(object)] = {type.substr(name, type.size() - name - 1), table};
    table = Replacements();
}

void HostCalls::Walk(const std::function<void()>& act, const std::function<void()>& restore) {
    const auto doOnce = [&](const Round& round) {
        Begin(round);
        act();
        const std::vector<std::string> calls = g_round->calls;
        g_round->wrong.clear();
        if (restore) restore();
        // Another thread may be about to give back.
        const auto isAllGivenBack = [] {
            const std::lock_guard lock(g_lock);
            return g_round->open.empty();
        };
        EXPECT_TRUE(WaitUntil(isAllGivenBack)) << FailedCall();
        EXPECT_EQ(g_round->givenBackInVain, 0u) << FailedCall();
        return calls;
    };
    std::set<std::string> known;
    const bool isEvery = GetEnvironmentVariableW(L"QV_EVERY_FAULT", nullptr, 0) > 0;
    const std::vector<std::string> calls = doOnce(Round());
    EXPECT_GT(calls.size(), 3u);
    for (size_t number = 0; number < calls.size(); ++number) {
        const bool isFirst = known.insert(calls[number]).second;
        const size_t before = CountOf(calls[number], std::span(calls).first(number));
        for (const Fault fault : {Throws, GivesNothing, GivesNonsense, Refuses}) {
            const bool isTurn = fault == number % 4 || (restore && fault == Throws);
            if (isEvery || (isFirst && !restore) || (isTurn && isFirst == !!restore))
                doOnce({calls[number], before, fault});
        }
    }
    Begin({});
}

size_t HostCalls::Count() {
    const std::lock_guard lock(g_lock);
    return g_round->calls.size();
}

std::string HostCalls::FailedCall() {
    const std::lock_guard lock(g_lock);
    return g_round ? g_round->failed : "";
}

bool HostCalls::HasGivenNonsense() {
    return g_round && g_round->fault == GivesNonsense;
}

void HostCalls::Tell(std::function<void(const std::string&)> onCall) {
    Begin(Round{.onCall = std::move(onCall)});
}

}  // namespace QVTest
