#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>

// What every target of this folder shares: the fuzzer's bytes in the forms the product hands
// to its parsers, and a check that stops the run (the fuzzer keeps the input as a crash).

namespace zelvar::fuzz {

inline QByteArrayView view(const uint8_t* data, size_t size) {
    return QByteArrayView(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

// An owned copy, as the product holds a tool's output or a file's contents.
inline QByteArray bytes(const uint8_t* data, size_t size) {
    return view(data, size).toByteArray();
}

// The bytes as the product decodes a tool's output: UTF-8, and no text at all when they aren't
// valid. A stateful decoder (the default) holds back a character cut at the end instead of
// calling it an error; the Stateless flag counts it as one.
inline std::optional<QString> utf8Text(
    const uint8_t* data, size_t size, QStringDecoder::Flags flags = QStringDecoder::Flag::Default) {
    QStringDecoder decoder(QStringDecoder::Utf8, flags);
    QString text = decoder(view(data, size));
    if (decoder.hasError()) {
        return std::nullopt;
    }
    return text;
}

// A property that the parser promises about every answer.
inline void check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "fuzz check failed: %s\n", what);
        std::abort();
    }
}

}  // namespace zelvar::fuzz
