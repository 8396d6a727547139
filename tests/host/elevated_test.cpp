// elevated_test.cpp - requests to the elevated second process: their bytes, and the real process behind a real pipe.
#include <sstream>

#include <gtest/gtest.h>

#include "host/elevated_channel.h"
#include "host/elevated_protocol.h"
#include "host/message_pipe.h"
#include "host_runner.h"

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

TEST(RequestFields, AreTheseBytes) {
    EXPECT_EQ(SampleFields(), (Bytes{4, 3, 2, 1, 2, 0, 0, 0, 'a', 0, 0xAC, 0x20, 0, 0, 0, 0, 0, 0, 0, 0}));
}

/// How many of the sample's three fields can be read.
int FieldsIn(std::span<const uint8_t> bytes) {
    FieldReader reader(bytes);
    uint32_t number = 0;
    const wchar_t* text = nullptr;
    if (!reader.ReadNumber(number)) return 0;
    if (!reader.ReadString(text)) return 1;
    return reader.ReadString(text) ? 3 : 2;
}

TEST(RequestFields, AreReadOnlyAsFarAsTheyAreWhole) {
    const Bytes bytes = SampleFields();
    for (size_t size = 0; size <= bytes.size(); ++size) {
        // A copy of exactly this size: reading beyond it would leave the block.
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_EQ(FieldsIn(cut), size < 4 ? 0 : size < 14 ? 1 : size < 20 ? 2 : 3) << size;
    }
    const struct {
        const char* why;
        Bytes text;
    } bad[] = {
        {"a count beyond all bytes", {0xFF, 0xFF, 0xFF, 0xFF, 0, 0}},
        {"a count whose bytes wrap round", {0xFF, 0xFF, 0xFF, 0x7F, 0, 0}},
        {"no closing zero", {1, 0, 0, 0, 'a', 0, 'b', 0}},
        {"a zero inside", {2, 0, 0, 0, 'a', 0, 0, 0, 0, 0}},
    };
    for (const auto& c : bad) {
        const wchar_t* text = nullptr;
        EXPECT_FALSE(FieldReader(c.text).ReadString(text)) << c.why;
    }
}

TEST(ElevatedProtocol, AcceptsWholeMessagesOnly) {
    const Bytes payload = {1, 2, 3};
    const Bytes message = EncodeRequest({7, 2, payload});
    const std::optional<Request> request = DecodeRequest(message);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->id, 7u);
    EXPECT_EQ(request->extension, 2u);
    EXPECT_EQ(Bytes(request->payload.begin(), request->payload.end()), payload);
    for (size_t size = 0; size < message.size(); ++size)
        EXPECT_FALSE(DecodeRequest(std::span(message).first(size))) << size;
    Bytes longer = message;
    longer.push_back(0);
    EXPECT_FALSE(DecodeRequest(longer));
    for (const size_t at : {0u, 4u, 16u, 19u}) {  // magic, version, byte count low and high
        Bytes wrong = message;
        wrong[at] ^= 0x40;
        EXPECT_FALSE(DecodeRequest(wrong)) << at;
    }
    EXPECT_EQ(DecodeReply(EncodeReply(1314)), 1314u);
    EXPECT_FALSE(DecodeReply(message));
    EXPECT_FALSE(DecodeReply({}));
}

TEST(ElevatedChannel, ReachesASecondProcess) {
    const HostRunner host;
    const HostRun run = host.Run({L"call", L"Elevate", L"TEXT=five5", L"--can-elevate"});
    EXPECT_EQ(run.out, "result 1005\nresult 1005\n") << run.error;
    const HostRun large = host.Run({L"call", L"Elevate", L"TEXT=" + std::wstring(300000, L'x'), L"--can-elevate"});
    EXPECT_EQ(large.out, "result 301000\nresult 301000\n") << large.error;
    EXPECT_EQ(host.Run({L"call", L"Elevate", L"TEXT=a", L"REQUEST=9", L"--can-elevate"}).out, "result 1\nresult 1\n");
    EXPECT_EQ(host.Run({L"call", L"Elevate", L"TEXT=a"}).out, "no channel\n") << "the host cannot elevate";
}

TEST(ElevatedChannel, GivesUpWhenTheOtherProcessEnds) {
    std::ostringstream text;
    Output output(text, text, false);
    // The second process finds no library and ends before it connects.
    ElevatedChannel channel(output, {BesideThisProgram(L"qvhost.exe"), {L"--library", L"none.dll"}}, 0);
    EXPECT_FALSE(channel.Connect());
    EXPECT_EQ(channel.Send(1, "", 0), static_cast<uint32_t>(ERROR_PIPE_NOT_CONNECTED));
}

/// A real second process at the other end of a pipe of the test's own.
class ElevatedServer {
public:
    ElevatedServer() {
        const std::wstring name = RandomPipeName();
        EXPECT_EQ(m_pipe.Create(name), 0u);
        MessagePipe second;
        EXPECT_NE(second.Create(name), 0u) << "the name is taken";
        const std::wstring program = BesideThisProgram(L"qvhost.exe");
        std::wstring line =
            QuoteArguments({program, L"elevated-server", L"--pipe", name, L"--extension", L"0", L"--library",
                            BesideThisProgram(L"test_extension.dll"), L"--config", m_host.Folder() / L"config",
                            L"--language", m_host.Folder() / L"texts.txt"});
        STARTUPINFOW start = {};
        start.cb = sizeof(start);
        PROCESS_INFORMATION started = {};
        EXPECT_TRUE(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                                   &started));
        CloseHandle(started.hThread);
        m_process.Reset(started.hProcess);
        EXPECT_EQ(m_pipe.WaitForClient(m_process.Get(), kPatience), 0u);
    }

    /// The result that comes back; nothing when no reply does.
    std::optional<uint32_t> Ask(const Bytes& message) {
        Bytes reply;
        if (m_pipe.Write(message, m_process.Get(), kPatience) != 0) return std::nullopt;
        if (m_pipe.Read(reply, 64, m_process.Get()) != 0) return std::nullopt;
        return DecodeReply(reply);
    }

    /// The exit code after the pipe has gone.
    DWORD End() {
        m_pipe = MessagePipe();
        EXPECT_EQ(WaitForSingleObject(m_process.Get(), kPatience), WAIT_OBJECT_0);
        DWORD code = 0;
        GetExitCodeProcess(m_process.Get(), &code);
        return code;
    }

private:
    HostRunner m_host;
    MessagePipe m_pipe;
    Win32::KernelHandle m_process;
};

TEST(MessagePipe, AdmitsOneClientAndThisUserAlone) {
    MessagePipe server;
    const std::wstring name = RandomPipeName();
    ASSERT_EQ(server.Create(name), 0u);
    MessagePipe client;
    ASSERT_EQ(client.Open(name), 0u);
    const HANDLE second = CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PIPE_BUSY});
    EXPECT_EQ(second, INVALID_HANDLE_VALUE);
    MessagePipe other;
    EXPECT_NE(other.Create(name), 0u) << "a name that is taken is not shared";
}

/// The user that this process runs as.
std::vector<uint8_t> OwnUser() {
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    const Win32::KernelHandle owner(token);
    std::vector<uint8_t> user(sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE);
    DWORD size = 0;
    EXPECT_TRUE(GetTokenInformation(token, TokenUser, user.data(), static_cast<DWORD>(user.size()), &size));
    return user;
}

TEST(MessagePipe, ListsThisUserAndNobodyElse) {
    MessagePipe server;
    const std::wstring name = RandomPipeName();
    ASSERT_EQ(server.Create(name), 0u);
    const Win32::FileHandle client(
        CreateFileW(name.c_str(), GENERIC_READ | READ_CONTROL, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(client) << GetLastError();
    ACL* list = nullptr;
    PSECURITY_DESCRIPTOR raw = nullptr;
    ASSERT_EQ(GetSecurityInfo(client.Get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                              nullptr, &raw),
              DWORD{ERROR_SUCCESS});
    const Win32::LocalMemory descriptor(raw);
    ASSERT_NE(list, nullptr) << "without a list everybody is let in";
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    ASSERT_TRUE(GetSecurityDescriptorControl(raw, &control, &revision));
    EXPECT_TRUE(control & SE_DACL_PROTECTED) << "nothing is inherited";
    ASSERT_EQ(list->AceCount, 1);
    void* entry = nullptr;
    ASSERT_TRUE(GetAce(list, 0, &entry));
    auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
    EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    std::vector<uint8_t> user = OwnUser();
    EXPECT_TRUE(EqualSid(reinterpret_cast<PSID>(&allowed->SidStart),
                         reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid));
}

TEST(ElevatedServer, RefusesMalformedMessagesAndGoesOn) {
    ElevatedServer server;
    const Bytes fields = SampleFields();
    const Bytes good = EncodeRequest({7000, 0, fields});
    Bytes wrongCount = good;
    wrongCount[16] ^= 1;
    const struct {
        const char* why;
        Bytes message;
        uint32_t result;
    } cases[] = {
        {"a good one", good, 1002},
        {"one byte", {1}, ERROR_INVALID_PARAMETER},
        {"half a header", Bytes(good.begin(), good.begin() + 10), ERROR_INVALID_PARAMETER},
        {"a wrong byte count", wrongCount, ERROR_INVALID_PARAMETER},
        {"another extension", EncodeRequest({7000, 1, fields}), ERROR_INVALID_PARAMETER},
        {"fields cut short", EncodeRequest({7000, 0, std::span(fields).first(9)}), ERROR_INVALID_PARAMETER},
        {"an unknown request", EncodeRequest({1, 0, fields}), ERROR_INVALID_FUNCTION},
        {"more than the most", Bytes(kRequestHeaderSize + kLargestPayload + 1), ERROR_INVALID_PARAMETER},
        {"a good one after all that", good, 1002},
    };
    for (const auto& c : cases) EXPECT_EQ(server.Ask(c.message), c.result) << c.why;
    EXPECT_EQ(server.End(), 0u);
}

}  // namespace
