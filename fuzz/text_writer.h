// text_writer.h - a writer that keeps what it gets.
#pragma once

#include <string>

#include "textio/data_writer.h"

namespace QVFuzz {

class TextWriter final : public QVUtils::DataWriter {
public:
    uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* written) override {
        text.append(static_cast<const char*>(buffer), size);
        if (written) *written = size;
        return 1;
    }
    std::string text;
};

}  // namespace QVFuzz
