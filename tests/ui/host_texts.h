// host_texts.h - texts that tell the id they were asked for: "511d".
#pragma once

#include <list>
#include <memory>
#include <string>

#include "ui/controls.h"

namespace QVTest {

/// The list that the function fills lives as long as its copies.
inline Ui::HostTexts EchoTexts() {
    return [texts = std::make_shared<std::list<std::wstring>>()](Quorvane::SDK::TextId id) {
        texts->push_back(std::to_wstring(id >> 16) + static_cast<wchar_t>(id & 0xFF));
        return texts->back().c_str();
    };
}

}  // namespace QVTest
