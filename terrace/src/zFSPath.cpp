#include "zFSPath.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr char kSeparator = '/';

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
        text.assign(path, length < 0 ? std::strlen(path) : strnlen(path, static_cast<size_t>(length)));
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
    fPath.append(1, kSeparator).append(name);
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
    if (!path || length < 0)
        return "";
    const size_t dot = find_dot(std::string_view(path, static_cast<size_t>(length)));
    return dot == std::string_view::npos ? "" : path + dot + 1;
}

bool zFSPath::HasExtension(const char* path, const char* extension) {
    return path && extension &&
           std::strcmp(GetExtension(path, static_cast<int>(std::strlen(path))), extension) == 0;
}

void zFSPath::ConvertStringToLocalPathStyle() {
    ConvertStringToLocalPathStyle(fPath.data(), static_cast<int>(fPath.size()));
}

void zFSPath::ConvertStringToLocalPathStyle(char* path, int length) {
    if (path && length > 0)
        std::replace(path, path + length, '\\', kSeparator);
}
