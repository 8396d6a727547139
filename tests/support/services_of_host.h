// services_of_host.h - the stand-in host's services in the test's own process, without a library: for code of the
// library that is called directly. For tests that link the host's room.
#pragma once

#include <sstream>

#include <gtest/gtest.h>

#include "host/app/session.h"
#include "host/contract/extension_services.h"
#include "host/contract/whole_file.h"
#include "support/temporary_folder.h"
#include "win32/path.h"

namespace QVTest {

class ServicesOfHost {
public:
    /// `options` as on the host's command line; `program` is qvhost.exe, whose neighbour has the texts.
    explicit ServicesOfHost(const std::wstring& program, QVHost::HostOptions options = {})
        : m_environment{.out = m_out,
                        .error = m_notes,
                        .in = m_in,
                        .program = program,
                        .outIsTerminal = false,
                        .readAnswer = {},
                        .progressWatch = {}},
          m_output(m_out, m_notes, true),
          m_state(QVHost::MakeHostState(WithSettings(std::move(options)), m_environment, m_output)),
          m_services(m_state, 0, {}) {
        std::string texts;
        const std::wstring folder(Win32::FolderOf(program));
        EXPECT_EQ(QVHost::ReadWholeFile(folder + L"qvhost-english.txt", texts), 0u);
        m_state.texts.Read(texts);
    }

    QVHost::HostServices& Services() { return m_services; }
    QVHost::HostState& State() { return m_state; }
    /// An item of the panel's selection.
    QVHost::FileItem& Select(const std::wstring& path) {
        m_state.selection.push_back(m_state.files.MakeItem(path));
        return *m_state.selection.back();
    }
    /// Log lines; and questions with their answers.
    std::string Log() const { return m_out.str(); }
    std::string Notes() const { return m_notes.str(); }
    /// The folder with the host's settings.
    const TemporaryFolder& Settings() const { return m_settings; }

private:
    QVHost::HostOptions WithSettings(QVHost::HostOptions options) const {
        options.config = m_settings.Path();
        return options;
    }

    TemporaryFolder m_settings;
    std::ostringstream m_out;
    std::ostringstream m_notes;
    std::istringstream m_in;
    QVHost::HostEnvironment m_environment;
    QVHost::Output m_output;
    QVHost::HostState m_state;
    QVHost::HostServices m_services;
};

}  // namespace QVTest
