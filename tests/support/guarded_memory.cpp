// guarded_memory.cpp - in the checked build, memory that shows a wrong access at the very instruction: each block of a
// test program lies at the end of pages of its own, before a page that nobody may touch, and its pages are never used
// again. So reading or writing beyond a block, or after its end, is an access violation. The two blocks of 16 bytes
// around it are looked at when it is given back: what was written in front of it, or into the few bytes that alignment
// leaves after it, ends the program there.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "win32/windows.h"

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kAlignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
constexpr size_t kAddresses = size_t{1} << 36;  // reserved for good; a page more than its content for each block
constexpr uint64_t kMark = 0x5AFE'B10C'5AFE'B10C;
constexpr unsigned char kFiller = 0xFD;

// Guarding a block takes a thousand times as long as making one, and a few tests make millions.
constexpr uint64_t kAllGuarded = 100'000;  // blocks from a program's start
constexpr uint64_t kThenEach = 200;
// Each stretch of pages is one for the system too, and a process may have some ten thousand of them.
constexpr size_t kMostAtOnce = 10'000;

struct Header {
    uint64_t mark;
    uint64_t size;  // bytes that were asked for
};
static_assert(sizeof(Header) == kAlignment);

std::atomic<uint64_t> g_count = 0;
std::atomic<size_t> g_used = 0;
std::atomic<size_t> g_live = 0;

constexpr size_t RoundedUp(size_t size, size_t to) {
    return (size + to - 1) / to * to;
}

unsigned char* Addresses() {
    static auto* const addresses =
        static_cast<unsigned char*>(VirtualAlloc(nullptr, kAddresses, MEM_RESERVE, PAGE_NOACCESS));
    return addresses;
}

bool IsGuarded(const void* block) {
    const auto* const at = static_cast<const unsigned char*>(block);
    return Addresses() && at >= Addresses() && at < Addresses() + kAddresses;
}

/// Null when there is no space for more of this kind.
void* GuardedBlock(size_t size) {
    const size_t room = RoundedUp(size, kAlignment);
    const size_t pages = RoundedUp(sizeof(Header) + room, kPage);
    const size_t place = g_used.fetch_add(pages + kPage);
    if (!Addresses() || place + pages + kPage > kAddresses) return nullptr;
    auto* const first =
        static_cast<unsigned char*>(VirtualAlloc(Addresses() + place, pages, MEM_COMMIT, PAGE_READWRITE));
    if (!first) return nullptr;
    ++g_live;
    unsigned char* const block = first + pages - room;
    const Header header = {kMark, size};
    std::memcpy(block - sizeof(Header), &header, sizeof(Header));
    std::memset(block + size, kFiller, room - size);
    return block;
}

void GiveBack(unsigned char* block) {
    Header header;
    std::memcpy(&header, block - sizeof(Header), sizeof(Header));
    bool isWhole = header.mark == kMark;
    const size_t room = isWhole ? RoundedUp(header.size, kAlignment) : 0;
    for (size_t at = header.size; at < room; ++at) isWhole = isWhole && block[at] == kFiller;
    if (!isWhole) std::abort();
    const size_t pages = RoundedUp(sizeof(Header) + room, kPage);
    VirtualFree(block + room - pages, pages, MEM_DECOMMIT);
    --g_live;
}

}  // namespace

void* operator new(size_t size) {
    const uint64_t number = g_count++;
    void* block = nullptr;
    if (g_live < kMostAtOnce && (number < kAllGuarded || number % kThenEach == 0)) block = GuardedBlock(size);
    if (!block) block = std::malloc(size > 0 ? size : 1);
    if (!block) throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept {
    if (IsGuarded(block))
        GiveBack(static_cast<unsigned char*>(block));
    else
        std::free(block);
}

void operator delete(void* block, size_t) noexcept {
    operator delete(block);
}
