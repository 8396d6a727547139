// elevated_message.h - a message as it arrives in the elevated process. For the fuzz target and the tests.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "host/elevated/elevated_protocol.h"
#include "sdk/services.h"

namespace QVFuzz {

class ElevatedMessage final : public Quorvane::SDK::IRequestMessage {
public:
    /// `payload` must stay where it is.
    explicit ElevatedMessage(std::span<const uint8_t> payload) : m_payload(payload) {}
    const void* GetData() override { return m_payload.data(); }
    uint32_t GetSize() override { return static_cast<uint32_t>(m_payload.size()); }
    void Reply(uint32_t, uint32_t result, uintptr_t, uintptr_t) override { m_result = result; }
    Quorvane::SDK::IRequestReader* CreateReader() override {
        return m_readers.Keep(std::make_shared<QVHost::RequestReader>(m_readers));
    }
    /// Of the reply; all bits when there was none.
    uint32_t Result() const { return m_result; }

private:
    std::span<const uint8_t> m_payload;
    uint32_t m_result = 0xFFFFFFFF;
    QVHost::Shelf<QVHost::RequestReader> m_readers;
};

}  // namespace QVFuzz
