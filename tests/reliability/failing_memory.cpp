#include "reliability/failing_memory.h"

#include <atomic>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace QVTest {
namespace {

// A new thread begins with allocations of the runtime: its handle, its table of thread-local data, the record of
// exceptions. Without them it ends the process, and nobody can help that.
constexpr int kOfTheRuntime = 6;

// The replaced functions are plain ones, so what they know is global.
std::atomic<bool> g_isArmed = false;
std::atomic<bool> g_isLasting = false;
std::atomic<bool> g_hasFailed = false;
std::atomic<size_t> g_number = 0;
std::atomic<size_t> g_count = 0;
thread_local int t_seen = 0;

bool FailsNow() {
    if (t_seen < kOfTheRuntime) {
        ++t_seen;
        return false;
    }
    if (!g_isArmed) return false;
    const size_t at = g_count++;
    const bool fails = at == g_number || (g_isLasting && at > g_number);
    if (fails) g_hasFailed = true;
    return fails;
}
void* FailingMalloc(size_t size) {
    return FailsNow() ? nullptr : std::malloc(size);
}
void* FailingCalloc(size_t count, size_t size) {
    return FailsNow() ? nullptr : std::calloc(count, size);
}
void* FailingRealloc(void* block, size_t size) {
    return FailsNow() ? nullptr : std::realloc(block, size);
}

}  // namespace

FailingMemory::FailingMemory(HMODULE module) {
    m_imports.emplace_back(module, "malloc", reinterpret_cast<void*>(FailingMalloc));
    m_imports.emplace_back(module, "calloc", reinterpret_cast<void*>(FailingCalloc));
    m_imports.emplace_back(module, "realloc", reinterpret_cast<void*>(FailingRealloc));
}

void FailingMemory::Arm(size_t number, bool isLasting) {
    g_hasFailed = false;
    g_count = 0;
    g_number = number;
    g_isLasting = isLasting;
    g_isArmed = true;
}

void FailingMemory::Disarm() {
    g_isArmed = false;
}

bool FailingMemory::HasFailed() const {
    return g_hasFailed;
}

size_t FailingMemory::Count() const {
    return g_count;
}

void FailingMemory::Walk(const std::function<void(const Begin&)>& action) {
    const bool isEvery = GetEnvironmentVariableW(L"QV_EVERY_FAULT", nullptr, 0) > 0;
    for (const bool isLasting : {false, true}) {
        g_hasFailed = true;
        for (size_t number = 0; g_hasFailed; number = isEvery ? number + 1 : 2 * number + 1) {
            SCOPED_TRACE("allocation " + std::to_string(number) + (isLasting ? " and all others" : ""));
            g_hasFailed = false;
            action([&] { Arm(number, isLasting); });
            Disarm();
        }
    }
}

}  // namespace QVTest
