// replay_test.cpp - runs every fuzz target on its seeds, on each seed cut short anywhere, and on seeds with a few bytes
// changed: without a look at coverage, but on Windows' own types.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include "fuzz/targets.h"

namespace {

constexpr int kChanged = 200;  // variants of a seed

std::vector<std::vector<uint8_t>> SeedsOf(const char* target) {
    std::vector<std::vector<uint8_t>> seeds;
    // The tests run under a drive letter that stands for the whole file system of the build machine.
    for (const auto& entry : std::filesystem::directory_iterator(std::string("Z:" QV_SEEDS "/") + target)) {
        std::ifstream file(entry.path(), std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return seeds;
}

/// A seed with a few of its bytes changed.
std::vector<uint8_t> VariantOf(std::vector<uint8_t> changed, const std::vector<std::vector<uint8_t>>& seeds,
                               std::mt19937& random) {
    for (size_t count = 1 + random() % 4; count > 0; --count) {
        const std::vector<uint8_t>& other = seeds[random() % seeds.size()];
        uint8_t& byte = changed[random() % changed.size()];
        byte = random() % 2 == 0 || other.empty() ? static_cast<uint8_t>(random()) : other[random() % other.size()];
    }
    return changed;
}

/// What runs, for the file among the failures: the program ends with the first fault.
std::vector<uint8_t>& RunningInput() {
    static std::vector<uint8_t> input;
    return input;
}

void ShowInput(int) {
    std::printf("input:");
    for (const uint8_t byte : RunningInput()) std::printf(" %02x", byte);
    std::printf("\n");
    std::fflush(stdout);
}

unsigned long Setting(const char* name) {
    const char* const text = std::getenv(name);
    return text ? std::strtoul(text, nullptr, 10) : 0;
}

}  // namespace

class Replay : public testing::TestWithParam<QVFuzz::Target> {};

TEST_P(Replay, OfTheSeedsAndTheirNeighboursFindsNothing) {
    const auto seeds = SeedsOf(GetParam().name);
    ASSERT_FALSE(seeds.empty());
    std::mt19937 random(1);
    for (const std::vector<uint8_t>& seed : seeds) {
        for (size_t size = 0; size <= seed.size(); ++size) GetParam().run({seed.data(), size});
        for (int at = 0; at < kChanged && !seed.empty(); ++at) GetParam().run(VariantOf(seed, seeds, random));
    }
}

// For ./qv fuzz, which names the seconds and the random numbers: the same for as long as one likes.
TEST_P(Replay, ForTheTimeGivenFindsNothing) {
    const std::chrono::seconds time(Setting("QV_REPLAY_SECONDS"));
    if (time.count() == 0) return;
    std::signal(SIGABRT, ShowInput);
    const auto seeds = SeedsOf(GetParam().name);
    std::mt19937 random(Setting("QV_REPLAY_SEED"));
    size_t runs = 0;
    for (const auto end = std::chrono::steady_clock::now() + time; std::chrono::steady_clock::now() < end; ++runs) {
        std::vector<uint8_t>& changed = RunningInput() = seeds[random() % seeds.size()];
        for (size_t rounds = 1 + random() % 8; rounds > 0 && !changed.empty(); --rounds)
            changed = VariantOf(std::move(changed), seeds, random);
        GetParam().run(changed);
    }
    std::cout << "runs: " << runs << std::endl;
}

INSTANTIATE_TEST_SUITE_P(Every, Replay, testing::ValuesIn(QVFuzz::Targets().begin(), QVFuzz::Targets().end()),
                         [](const auto& instance) {
                             std::string name = instance.param.name;
                             std::erase(name, '-');
                             return name;
                         });
