#pragma once

#include <string>

#include <QString>

/// Between the program's texts, UTF-8, and the toolkit's.
namespace QtText {

inline QString FromUtf8(const std::string& text) {
    return QString::fromStdString(text);
}

/// For a place where an ampersand would mark the next letter as a key.
inline QString Label(const std::string& text) {
    return FromUtf8(text).replace('&', "&&");
}

} // namespace QtText
