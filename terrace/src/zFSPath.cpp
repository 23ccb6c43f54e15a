#include "zFSPath.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr char kSeparator = '/';

// A negative length means up to the zero.
size_t text_length(const char* text, int length) {
    return length < 0 ? std::strlen(text) : strnlen(text, static_cast<size_t>(length));
}

// Where the extension's dot is; npos when the last part has none.
size_t find_dot(std::string_view path) {
    const size_t at = path.find_last_of("./");
    return at != std::string_view::npos && path[at] == '.' ? at : std::string_view::npos;
}

} // namespace

const char* const zFSPath::fDirString = "/";

zFSPath& zFSPath::operator=(const char* path) {
    Assign(path, -1);
    return *this;
}

void zFSPath::Assign(const char* path, int length) {
    std::string text;
    if (path)
        text.assign(path, text_length(path, length));
    fPath = std::move(text);
    StripTrailingDirectory();
}

void zFSPath::GoParent() {
    const size_t at = fPath.rfind(kSeparator);
    fPath.resize(at == std::string::npos ? 0 : at);
}

void zFSPath::GoChild(const char* name) {
    if (!name)
        return;
    if (name[0] == kSeparator && name[1])
        ++name;
    // In one piece, because the name may be a part of this very path.
    fPath += kSeparator + std::string(name);
    StripTrailingDirectory();
}

void zFSPath::StripTrailingDirectory() {
    if (fPath.ends_with(kSeparator))
        fPath.pop_back();
}

void zFSPath::StripFileExtension() {
    const size_t dot = find_dot(fPath);
    if (dot != std::string::npos)
        fPath.resize(dot);
}

const char* zFSPath::GetLeaf() const {
    const size_t at = fPath.rfind(kSeparator);
    return Path() + (at == std::string::npos ? 0 : at + 1);
}

const char* zFSPath::GetExtension(const char* path, int length) {
    if (!path)
        return "";
    const size_t dot = find_dot(std::string_view(path, text_length(path, length)));
    return dot == std::string_view::npos ? "" : path + dot + 1;
}

bool zFSPath::HasExtension(const char* path, const char* extension) {
    return path && extension && std::strcmp(GetExtension(path, -1), extension) == 0;
}

void zFSPath::ConvertStringToLocalPathStyle() {
    ConvertStringToLocalPathStyle(fPath.data(), static_cast<int>(fPath.size()));
}

void zFSPath::ConvertStringToLocalPathStyle(char* path, int length) {
    if (path)
        std::replace(path, path + text_length(path, length), '\\', kSeparator);
}
