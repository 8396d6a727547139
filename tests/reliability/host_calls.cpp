#include "reliability/host_calls.h"

#include <algorithm>
#include <array>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "sdk/host_services.h"
#include "support/replaced_imports.h"

namespace QVTest {
namespace {

using namespace Quorvane::SDK;

// Its slots, and those of them that do not answer with a number, or nothing. Number, kind, detail: `>` an object of
// that interface ("-" for one without slots), `+` one that is to be given back, `-` gives back its argument with that
// number (0 is the object itself), `t` a text, `b` fills a buffer, that argument, `p`, `c` and `n` fill a record or
// number, that argument. Services are named by their number.
struct Interface {
    const char* name;
    size_t slots;
    const char* answers;
};
constexpr Interface kInterfaces[] = {
    {"services", 149,
     "15 t - 16 t - 34 > factory 35 > menus 36 > registry 42 + xml 44 > settings 45 b 1 63 + service 65 - 1 "
     "129 + list 130 + progress 133 + choices 147 b 2 148 c 1"},
    {"extension", 12, ""},
    {"properties", 6, ""},
    {"factory", 2, "1 > -"},
    {"menus", 13, "0 > - 1 > - 2 > - 4 > - 7 > -"},
    {"registry", 4, "1 > command"},
    {"command", 2, ""},
    {"call", 7, "1 t - 2 n 2"},
    {"settings", 7, "1 b 4"},
    {"progress", 3, "2 - 0"},
    {"choices", 15, "2 t - 14 - 0"},
    {"xml", 30, "1 + document 2 + document 4 b 2 29 - 0"},
    {"document", 3, "0 > element 1 > element 2 - 0"},
    {"element", 8, "0 b 1 1 > element 2 > element 3 b 1 4 b 2 5 > element"},
    {"list", 13, "4 > item 12 - 0"},
    {"item", 37, "0 b 1 2 b 1 3 b 1 10 p 3 12 - 0 35 p 3"},
    {"3000", 70, "17 + item 64 + batch 65 - 1 68 b 4 69 b 2"},
    {"batch", 2, ""},
    {"3010", 1, ""},
    {"3100", 2, ""},
    {"3250", 12, "9 + writer"},
    {"writer", 8, "5 > - 7 - 0"},
};

struct Slot {
    char kind = ' ';
    std::string detail;
    bool Gives() const { return kind == '>' || kind == '+'; }
};
struct Class {
    const Interface* interface_ = nullptr;
    std::map<size_t, Slot> slots;
    std::vector<ReplacedSlot> replaced;
};
using Arguments = std::array<uintptr_t, 9>;  // the object first; the longest log line has no more

// What plain functions, in the place of all slots, know.
struct State {
    std::mutex lock;
    std::map<void*, Class> classes;  // by their table
    std::multiset<uintptr_t> open;
    size_t endedTwice = 0;
    bool isArmed = false;
    uint32_t count = 0;
    uint32_t number = 0;
    HostFault fault = {};
    std::string failed;
    std::function<void(const std::string&)> onCall;
} g_state;
thread_local bool t_isInHost = false;  // calls between the host's own objects are not the library's

uintptr_t CallOn(bool isHostsSide, void* function, const Arguments& given) {
    const struct Side {
        ~Side() { t_isInHost = former; }
        bool former;
    } side = {std::exchange(t_isInHost, isHostsSide)};
    return std::apply(
        [&](auto... each) { return reinterpret_cast<uintptr_t (*)(decltype(each)...)>(function)(each...); }, given);
}

uintptr_t OddAnswer(const Slot& slot, const Arguments& given) {
    if (slot.Gives()) return 0;
    if (slot.kind == 't') return reinterpret_cast<uintptr_t>(L"%s%d%|<");
    const size_t at =
        std::string_view("bpcn").find(slot.kind) != std::string_view::npos ? slot.detail[0] - size_t{'0'} : 0;
    if (slot.kind == 'b')
        std::fill_n(reinterpret_cast<wchar_t*>(given[at]), static_cast<uint32_t>(given[at + 1]), L'x');
    if (slot.kind == 'n') *reinterpret_cast<uint32_t*>(given[at]) = 0xFFFFFFFF;
    if (slot.kind == 'c') reinterpret_cast<ChoiceRequest*>(given[at])->position = 0xFFFFFFFF;
    if (slot.kind == 'p') {
        reinterpret_cast<StoredPropertyValue*>(given[at])->status = -1;
        std::ranges::fill(reinterpret_cast<StoredPropertyValue*>(given[at])->text, L'x');
    }
    return 0xFFFFFF01;  // true as well
}

void Watch(uintptr_t object, const std::string& name);

uintptr_t OnCall(const Interface& interface_, size_t slotNumber, const Slot& slot, void* original,
                 const Arguments& given) {
    std::unique_lock lock(g_state.lock);
    const uint32_t number = g_state.count++;
    const bool fails = number == g_state.number;
    const std::string name = interface_.name + (" " + std::to_string(slotNumber));
    if (fails) g_state.failed = name;
    if (slot.kind == '-') {
        const auto found = g_state.open.find(given[slot.detail[0] - size_t{'0'}]);
        if (found == g_state.open.end())
            ++g_state.endedTwice;
        else
            g_state.open.erase(found);
    }
    lock.unlock();
    uintptr_t answer = !fails || slot.kind == '-' ? CallOn(true, original, given) : 0;
    if (fails && g_state.fault == HostFault::Throws) throw number;
    if (fails && g_state.fault == HostFault::AnswersOddly) answer = OddAnswer(slot, given);
    if (fails && g_state.fault == HostFault::Refuses && !slot.Gives() && slot.kind != 't')
        answer = ERROR_INVALID_FUNCTION;
    if (slot.Gives() && answer != 0) Watch(answer, slot.detail == "service" ? std::to_string(given[1]) : slot.detail);
    lock.lock();
    if (slot.kind == '+' && answer != 0) g_state.open.insert(answer);
    lock.unlock();
    if (g_state.onCall) g_state.onCall(name);
    return answer;
}

template <size_t number>
uintptr_t Replacement(uintptr_t object, uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d, uintptr_t e, uintptr_t f,
                      uintptr_t g, uintptr_t h) {
    const Arguments given = {object, a, b, c, d, e, f, g, h};
    std::unique_lock lock(g_state.lock);
    Class& class_ = g_state.classes.at(*reinterpret_cast<void**>(object));
    const std::string_view name = class_.interface_->name;
    const auto slot = class_.slots.find(number);
    lock.unlock();
    void* const original = class_.replaced[number].Original();
    const bool isEntry = name == "extension" || name == "properties";
    if (isEntry && (number == 0 || number == 2)) Watch(a, "services");
    if (name == "extension" && number == 7) Watch(a, "call");
    if (name == "properties" && number == 4) Watch(a, "item");
    if (isEntry || t_isInHost || !g_state.isArmed) return CallOn(!isEntry, original, given);
    return OnCall(*class_.interface_, number, slot == class_.slots.end() ? Slot() : slot->second, original, given);
}

template <size_t... numbers>
constexpr auto ReplacementsOf(std::index_sequence<numbers...>) {
    return std::array{&Replacement<numbers>...};
}

void Watch(uintptr_t object, const std::string& name) {
    static constexpr auto kReplacements = ReplacementsOf(std::make_index_sequence<kInterfaces[0].slots>());
    const auto interface_ = std::ranges::find(kInterfaces, name, &Interface::name);
    if (object == 0 || interface_ == std::end(kInterfaces)) return;
    const std::lock_guard lock(g_state.lock);
    const auto [place, isNew] = g_state.classes.try_emplace(*reinterpret_cast<void**>(object));
    if (!isNew) return;
    Class& added = place->second;
    added.interface_ = interface_;
    std::istringstream answers(interface_->answers);
    Slot slot;
    for (size_t number = 0; answers >> number >> slot.kind >> slot.detail;) added.slots[number] = slot;
    for (size_t number = 0; number < interface_->slots; ++number)
        added.replaced.emplace_back(reinterpret_cast<void*>(object), number, kReplacements[number]);
}

}  // namespace

HostCalls::HostCalls(void* extension, uint32_t index) {
    t_isInHost = true;
    Watch(reinterpret_cast<uintptr_t>(extension), index == 1 ? "properties" : "extension");
}

HostCalls::~HostCalls() {
    Disarm();
    g_state.classes.clear();
}

void HostCalls::Arm(uint32_t number, HostFault fault) {
    Disarm();
    g_state.number = number;
    g_state.fault = fault;
    g_state.count = 0;
    g_state.failed.clear();
    g_state.open.clear();
    g_state.endedTwice = 0;
    g_state.isArmed = true;
}

void HostCalls::Arm(std::function<void(const std::string&)> onCall) {
    Arm(0xFFFFFFFF, {});
    g_state.onCall = std::move(onCall);
}

void HostCalls::Disarm() {
    g_state.isArmed = false;
    g_state.onCall = nullptr;
}

uint32_t HostCalls::Count() const {
    return g_state.count;
}
std::string HostCalls::FailedCall() const {
    return g_state.failed;
}
size_t HostCalls::OpenObjects() const {
    return g_state.open.size() + g_state.endedTwice;
}

}  // namespace QVTest
