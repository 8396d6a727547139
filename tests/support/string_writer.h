// string_writer.h - a writer that keeps what is written.
#pragma once

#include <string>

#include "textio/data_writer.h"

namespace QVTest {

class StringWriter : public QVUtils::DataWriter {
public:
    uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) override {
        text.append(static_cast<const char*>(buffer), size);
        *bytesWritten = size;
        return 1;
    }
    std::string text;
};

}  // namespace QVTest
