#include "host/app/command_line.h"

#include <gtest/gtest.h>

#include "host/app/host_error.h"

namespace {

using namespace QVHost;
using Words = std::vector<std::wstring>;

TEST(ParseCommandLine, TakesOperandsAsTheyAre) {
    const std::tuple<const char*, Words, Words> cases[] = {
        {"brackets and a comma", {L"call", L"N", L"FIND=[a,b]"}, {L"N", L"FIND=[a,b]"}},
        {"a value like an option, a further equals sign", {L"call", L"N", L"FIND=-x=b"}, {L"N", L"FIND=-x=b"}},
        {"blanks and nothing", {L"call", L"N", L"A= ", L"B="}, {L"N", L"A= ", L"B="}},
        {"the name of an action", {L"call", L"N", L"menus"}, {L"N", L"menus"}},
        {"options on both sides", {L"--quiet", L"call", L"N", L"--answer", L"no", L"S"}, {L"N", L"S"}},
        {"a list alone, and nothing at all", {L"rename", L"[a,b]", L"", L"{}"}, {L"[a,b]", L"", L"{}"}},
        {"words after two dashes", {L"command", L"1", L"--", L"-a", L"--quiet"}, {L"1", L"-a", L"--quiet"}},
        {"a single dash", {L"command", L"1", L"-"}, {L"1", L"-"}},
    };
    for (const auto& [why, arguments, operands] : cases)
        EXPECT_EQ(ParseCommandLine(arguments).operands, operands) << why;
}

TEST(ParseCommandLine, KeepsAnswersWholeAndInOrder) {
    const HostOptions options = ParseCommandLine({L"--answer", L"[a,b]", L"call", L"--answer=yes", L"N", L"--answer",
                                                  L"-1", L"--answer", L"a=b c", L"--answer", L"{}"});
    EXPECT_EQ(options.answers, (Words{L"[a,b]", L"yes", L"-1", L"a=b c", L"{}"}));
}

TEST(ParseCommandLine, TakesTheValuesOfRenameAsTheyAre) {
    const RenameOptions rename =
        ParseCommandLine({L"--name=x", L"rename", L"--name", L"[old]", L"a", L"--find", L"[a,b]", L"--find=-x",
                          L"--find", L"%%", L"--replace=", L"--replace", L"", L"--replace", L"--regex", L"b"})
            .rename;
    EXPECT_EQ(rename.nameTemplate, L"[old]");
    EXPECT_EQ(rename.find, (Words{L"[a,b]", L"-x", L"%%"}));
    EXPECT_EQ(rename.replace, (Words{L"", L"", L"--regex"}));
    EXPECT_FALSE(rename.isRegex);
    EXPECT_FALSE(rename.extensionTemplate);
}

TEST(ParseCommandLine, RefusesWhatMakesNoSense) {
    const std::wstring pipe = L"\\\\.\\pipe\\qvhost-0123456789abcdef0123456789abcdef";
    EXPECT_NO_THROW(ParseCommandLine({L"elevated-server", L"--pipe", pipe, L"--library", L"x", L"--extension", L"1"}));
    for (const Words& arguments : {Words{},
                                   {L"call"},
                                   {L"command"},
                                   {L"menus", L"extra"},
                                   {L"call", L"N", L"--unknown"},
                                   {L"--answer"},
                                   {L"call", L"N", L"--name", L"x"},
                                   {L"menus", L"--config", L""},
                                   {L"elevated-server"},
                                   {L"elevated-server", L"--pipe", pipe, L"--log", L"x"},
                                   {L"elevated-server", L"--pipe", pipe, L"--config", L"x"},
                                   {L"elevated-server", L"--pipe", pipe.substr(1)}})
        EXPECT_THROW(ParseCommandLine(arguments), UsageError) << arguments.size();
    for (const wchar_t* option : {L"--help", L"--version"}) EXPECT_THROW(ParseCommandLine({option}), HelpText);
}

}  // namespace
