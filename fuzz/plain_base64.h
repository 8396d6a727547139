// plain_base64.h - Base64 text by its rules: the slow reference of the encoder, for the tests and the fuzz target.
#pragma once

#include <cstdint>
#include <string>

namespace QVFuzz {

/// Bit by bit.
inline std::string Base64LettersOf(const std::string& bytes) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (size_t bit = 0; bit < bytes.size() * 8; bit += 6) {
        size_t value = 0;
        for (size_t at = bit; at < bit + 6; ++at) {
            const bool isSet = at < bytes.size() * 8 && (static_cast<uint8_t>(bytes[at / 8]) >> (7 - at % 8) & 1) != 0;
            value = value * 2 + (isSet ? 1 : 0);
        }
        text += alphabet[value];
    }
    while (text.size() % 4 != 0) text += '=';
    return text;
}

/// The file's text: blocks of so many bytes, one character after the other.
inline std::string Base64TextOf(const std::string& bytes, size_t blockSize) {
    std::string result;
    size_t column = 0;
    for (size_t begin = 0; begin < bytes.size(); begin += blockSize) {
        std::string text = Base64LettersOf(bytes.substr(begin, blockSize));
        while (!text.empty()) {
            const size_t piece = text.size() > 76 ? 76 - column : text.size();
            result += text.substr(0, piece);
            text.erase(0, piece);
            column += piece;
            if (column < 76) continue;
            result += "\r\n";
            column = 0;
        }
    }
    return result;
}

}  // namespace QVFuzz
