// confirm_by_choice.h - asks about a match through the host's choice dialog.
#pragma once

#include "fileutils/find_replace/confirm_replace.h"
#include "sdk/host_services.h"

namespace FileUtils {

class ConfirmByChoice final : public IConfirmReplace {
public:
    explicit ConfirmByChoice(Quorvane::SDK::IHostServices& host) : m_host(host) {}

    /// Cancel when the host shows no choice dialog or the user closes it.
    uint32_t Ask(const ConfirmQuestion& question) override;

private:
    Quorvane::SDK::IHostServices& m_host;
};

/// The match in its line, between brackets, and what would take its place; at most `capacity` - 1 units.
std::wstring DescribeMatch(const ConfirmQuestion& question, size_t capacity);

}  // namespace FileUtils
