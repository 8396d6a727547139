// qvutils_exception.h - the library's one exception: a text and the Windows error code that belongs to it.
#pragma once

#include <cstdint>
#include <stdexcept>

namespace QVUtils {

/// Windows error codes that the library raises itself. Kept as plain numbers so that the engines need no system header.
namespace ErrorCode {
inline constexpr uint32_t FileNotFound = 2;
inline constexpr uint32_t AccessDenied = 5;
inline constexpr uint32_t NotATextFile = 11;
inline constexpr uint32_t OutOfMemory = 14;
inline constexpr uint32_t ReadFault = 30;
inline constexpr uint32_t FileExists = 80;
inline constexpr uint32_t InvalidParameter = 87;
inline constexpr uint32_t DiskFull = 112;
inline constexpr uint32_t InvalidName = 123;
inline constexpr uint32_t FileTooLarge = 223;
inline constexpr uint32_t NoUnicodeTranslation = 1113;
inline constexpr uint32_t Cancelled = 1223;
inline constexpr uint32_t TextFormatNotSupported = 1630;
}  // namespace ErrorCode

/// Thrown inside the engines, caught where one file's work ends. Copies share nothing that can fail.
class QVUtilsException : public std::runtime_error {
public:
    QVUtilsException(uint32_t errorCode, const char* message) : std::runtime_error(message), m_errorCode(errorCode) {}
    QVUtilsException(uint32_t errorCode, const std::string& message)
        : std::runtime_error(message), m_errorCode(errorCode) {}

    uint32_t GetErrorCode() const noexcept { return m_errorCode; }

private:
    uint32_t m_errorCode;
};

}  // namespace QVUtils
