// replay_test.cpp - runs every fuzz target on its seeds, on each seed cut short anywhere, and on seeds with a few bytes
// changed: without a look at coverage, but on Windows' own types.
#include <filesystem>
#include <fstream>
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

}  // namespace

class Replay : public testing::TestWithParam<QVFuzz::Target> {};

TEST_P(Replay, OfTheSeedsAndTheirNeighboursFindsNothing) {
    const auto seeds = SeedsOf(GetParam().name);
    ASSERT_FALSE(seeds.empty());
    std::mt19937 random(1);
    for (const std::vector<uint8_t>& seed : seeds) {
        for (size_t size = 0; size <= seed.size(); ++size) GetParam().run({seed.data(), size});
        for (int at = 0; at < kChanged && !seed.empty(); ++at) {
            std::vector<uint8_t> changed = seed;
            for (size_t count = 1 + random() % 4; count > 0; --count) {
                const std::vector<uint8_t>& other = seeds[random() % seeds.size()];
                uint8_t& byte = changed[random() % changed.size()];
                byte = random() % 2 == 0 || other.empty() ? static_cast<uint8_t>(random())
                                                          : other[random() % other.size()];
            }
            GetParam().run(changed);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, Replay, testing::ValuesIn(QVFuzz::Targets().begin(), QVFuzz::Targets().end()),
                         [](const auto& instance) {
                             std::string name = instance.param.name;
                             std::erase(name, '-');
                             return name;
                         });
