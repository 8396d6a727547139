// elevated_test.cpp - requests to the elevated second process: their bytes, and the real process at the end of a real
// pipe.
#include <regex>
#include <sstream>

#include "host/elevated/elevated_channel.h"
#include "host/elevated/elevated_protocol.h"
#include "host/elevated/message_pipe.h"
#include "host_runner.h"
#include "support/start_process.h"

#include <aclapi.h>

namespace {

using namespace QVHost;
using namespace QVTest;

constexpr DWORD kPatience = 30000;  // milliseconds

Bytes SampleFields() {
    Bytes bytes;
    AppendNumber(bytes, 0x01020304);
    AppendString(bytes, L"a\u20AC");
    AppendString(bytes, L"");
    return bytes;
}

// Cut anywhere, requests are refused in the tests of the commands that send them; changed anywhere, messages are
// refused or written as they were read by the fuzz target.
TEST(RequestFields, AreReadWhenTheyAreWhole) {
    const Bytes bytes = SampleFields();
    EXPECT_EQ(bytes, (Bytes{4, 3, 2, 1, 2, 0, 0, 0, 'a', 0, 0xAC, 0x20, 0, 0, 0, 0, 0, 0, 0, 0}));
    const std::pair<const char*, Bytes> bad[] = {
        {"a count beyond all bytes", {0xFF, 0xFF, 0xFF, 0xFF, 0, 0}},
        {"a count whose bytes wrap round", {0xFF, 0xFF, 0xFF, 0x7F, 0, 0}},
        {"no closing zero", {1, 0, 0, 0, 'a', 0, 'b', 0}},
        {"a zero inside", {2, 0, 0, 0, 'a', 0, 0, 0, 0, 0}},
    };
    const wchar_t* text = nullptr;
    for (const auto& [why, field] : bad) EXPECT_FALSE(FieldReader(field).ReadString(text)) << why;
}

TEST(ElevatedProtocol, TellsRepliesFromOtherMessages) {
    const Bytes reply = EncodeReply({1314, std::wstring(kLargestMessage, L'x')});
    EXPECT_LE(reply.size(), kLargestMessage) << "whatever is logged, the other side takes it";
    EXPECT_EQ(DecodeReply(reply)->result, 1314u);
    EXPECT_EQ(DecodeReply(EncodeReply({1, L"a\nb"}))->log, L"a\nb");
    const Bytes payload = {1, 2, 3};
    for (const Bytes& other : {EncodeRequest({7, 2, payload}), EncodeAtWork(), Bytes()})
        EXPECT_FALSE(DecodeReply(other));
    EXPECT_TRUE(IsAtWork(EncodeAtWork()));
    EXPECT_FALSE(IsAtWork(reply));
}

TEST(ElevatedChannel, ReachesASecondProcess) {
    const HostRunner host;
    // More than fits one message, and than one message was allowed to hold in all.
    const HostRun large = host.Call({L"Elevate", L"TEXT=" + std::wstring(10000000, L'x'), L"--can-elevate"});
    const std::string answered = "[elevated] request 7000, 20000030 bytes: error 10001000\nresult 10001000\n";
    EXPECT_EQ(large.out, answered + answered) << large.error;
    const std::string refused = "[elevated] request 9, 32 bytes: error 1 (Invalid function.)\nresult 1\n";
    EXPECT_EQ(host.Call({L"Elevate", L"TEXT=a", L"REQUEST=9", L"--can-elevate"}).out, refused + refused);
    EXPECT_EQ(host.Call({L"Elevate", L"TEXT=a"}).out, "no channel\n") << "the host cannot elevate";
}

TEST(ElevatedChannel, GivesUpWhenTheOtherProcessEnds) {
    std::ostringstream text;
    Output output(text, text, false);
    Log log(output, L"", false);
    // The second process finds no library and ends before it connects.
    ElevatedChannel channel(log, {BesideThisProgram(L"qvhost.exe"), {L"--library", L"none.dll"}}, 0);
    EXPECT_FALSE(channel.Connect());
    EXPECT_EQ(channel.Send(1, "", 0), static_cast<uint32_t>(ERROR_PIPE_NOT_CONNECTED));
}

/// `program` as the second process of the host for a pipe that the test has made.
Win32::KernelHandle Start(const std::wstring& program, const std::wstring& pipe, const std::wstring& library) {
    StartedProcess server = StartProcess(program, QuoteArguments({program, L"elevated-server", L"--pipe", pipe,
                                                                  L"--extension", L"0", L"--library", library}));
    EXPECT_TRUE(server.process);
    return std::move(server.process);
}

/// The exit code of a process that has come to its end, or is ended.
DWORD ExitCodeOf(const Win32::KernelHandle& process) {
    EXPECT_EQ(WaitForSingleObject(process.Get(), kPatience), WAIT_OBJECT_0);
    TerminateProcess(process.Get(), 99);
    DWORD code = 0;
    GetExitCodeProcess(process.Get(), &code);
    return code;
}

/// A real second process at the other end of a pipe of the test's own.
class ElevatedServer {
public:
    ElevatedServer() {
        const std::wstring name = RandomPipeName();
        EXPECT_EQ(m_pipe.Create(name), 0u);
        // The program that made the pipe, or it would not be served.
        m_process = Start(OwnImage(), name, BesideThisProgram(L"test_extension.dll"));
        EXPECT_EQ(m_pipe.WaitForClient(m_process.Get(), kPatience), 0u);
        EXPECT_EQ(Answer(), 0u) << "it is ready";
    }

    /// The result that comes back; nothing when no reply does.
    std::optional<uint32_t> Ask(const Bytes& message) {
        return m_pipe.Write(message, m_process.Get(), kPatience) == 0 ? Answer() : std::nullopt;
    }
    std::optional<uint32_t> Answer() {
        Bytes message = EncodeAtWork();
        while (IsAtWork(message))
            if (m_pipe.Read(message, kLargestMessage, m_process.Get(), kPatience) != 0) return std::nullopt;
        const std::optional<Reply> reply = DecodeReply(message);
        return reply ? std::optional(reply->result) : std::nullopt;
    }

    /// The exit code after the pipe has gone.
    DWORD End() {
        m_pipe = MessagePipe();
        return ExitCodeOf(m_process);
    }

private:
    MessagePipe m_pipe;
    Win32::KernelHandle m_process;
};

TEST(MessagePipe, AdmitsOneClient) {
    MessagePipe server;
    const std::wstring name = RandomPipeName();
    ASSERT_EQ(server.Create(name), 0u);
    MessagePipe client;
    ASSERT_EQ(client.Open(name), 0u);
    EXPECT_EQ(CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PIPE_BUSY});
    MessagePipe other;
    EXPECT_NE(other.Create(name), 0u) << "a name that is taken is not shared";
    EXPECT_EQ(client.ServerProcessId(), GetCurrentProcessId());
    EXPECT_EQ(server.ClientProcessId(), GetCurrentProcessId());
    Bytes none;
    EXPECT_EQ(server.Read(none, 64, GetCurrentProcess(), 1), DWORD{ERROR_TIMEOUT});
    EXPECT_EQ(server.Write(Bytes{1, 2}, nullptr, kPatience), 0u) << "and the pipe still works";
    EXPECT_EQ(client.Read(none, 64, nullptr, INFINITE), 0u);
    EXPECT_EQ(none, (Bytes{1, 2}));
}

TEST(MessagePipe, ListsThisUserAndAdministrators) {
    MessagePipe server;
    const std::wstring name = RandomPipeName();
    ASSERT_EQ(server.Create(name), 0u);
    const Win32::FileHandle client(
        CreateFileW(name.c_str(), GENERIC_READ | READ_CONTROL, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(client) << GetLastError();
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetSecurityInfo(client.Get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                              nullptr, &descriptor),
              DWORD{ERROR_SUCCESS});
    const Win32::LocalMemory owner(descriptor);
    const std::wstring list = TextOfAccessList(descriptor);
    // Allowed, with nothing inherited, to one account that is no group by name, and to administrators.
    EXPECT_TRUE(std::regex_match(list, std::wregex(LR"(D:P\(A;[^)]*;S-1-5-21-[-0-9]*\)\(A;[^)]*;BA\))"))) << list;
}

TEST(ElevatedServer, RefusesMalformedMessagesAndGoesOn) {
    ElevatedServer server;
    const Bytes fields = SampleFields();
    const Bytes good = EncodeRequest({7000, 0, fields});
    Bytes padded = fields;
    padded.resize(fields.size() + 5);
    const std::tuple<const char*, Bytes, uint32_t> cases[] = {
        {"a good one", good, 1002},
        {"half a header", Bytes(good.begin(), good.begin() + 10), ERROR_INVALID_PARAMETER},
        {"another extension", EncodeRequest({7000, 1, fields}), ERROR_INVALID_PARAMETER},
        {"fields cut short", EncodeRequest({7000, 0, std::span(fields).first(9)}), ERROR_INVALID_PARAMETER},
        {"an unknown request", EncodeRequest({1, 0, fields}), ERROR_INVALID_FUNCTION},
        {"more than the most", Bytes(kLargestMessage + 1), ERROR_INVALID_PARAMETER},
        {"the rest of it missing", Bytes(good.begin(), good.end() - 1), ERROR_INVALID_PARAMETER},
        {"padding after the fields", EncodeRequest({7000, 0, padded}), 1002},
        {"a good one after all that", good, 1002},
    };
    for (const auto& [why, message, result] : cases) EXPECT_EQ(server.Ask(message), result) << why;
    EXPECT_EQ(server.End(), 0u);
}

TEST(ElevatedServer, ServesItsOwnProgramAndLibraryAlone) {
    const std::wstring host = BesideThisProgram(L"qvhost.exe");
    const std::wstring library = BesideThisProgram(L"test_extension.dll");
    const TemporaryFolder folder;
    const std::wstring stranger = folder / L"test_extension.dll";
    ASSERT_TRUE(CopyFileW(library.c_str(), stranger.c_str(), TRUE));
    const auto servedWith = [](const std::wstring& program, const std::wstring& name, const std::wstring& served) {
        MessagePipe pipe;
        EXPECT_EQ(pipe.Create(name), 0u);
        return ExitCodeOf(Start(program, name, served));  // content with the pipe, it would wait there
    };
    EXPECT_EQ(servedWith(host, RandomPipeName(), library), 1u) << "this test is another program";
    EXPECT_EQ(servedWith(host, RandomPipeName(), stranger), 2u);
    EXPECT_EQ(servedWith(OwnImage(), LR"(\\.\pipe\qvhost-0)", library), 2u);
}

TEST(PipeNames, AreThoseOfARandomKind) {
    const std::wstring name = RandomPipeName();
    EXPECT_TRUE(IsRandomPipeName(name));
    EXPECT_EQ(name.size(), 48u);
    for (const std::wstring& other : {name + L"0", name.substr(0, name.size() - 1), LR"(\\x)" + name.substr(3),
                                      name.substr(0, 47) + L"g", name.substr(0, 47) + L"A", std::wstring()})
        EXPECT_FALSE(IsRandomPipeName(other)) << testing::PrintToString(other);
}

}  // namespace
