#include "zDirectory_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "zResult.h"

namespace {

// What the process's file mode mask leaves of it.
constexpr mode_t kDirectoryMode = 0777;

int result_of(bool success) {
    return success ? result::kOk : result::kFailure;
}

} // namespace

zDirectory* zDirectory::Factory() {
    return new zDirectory_posix;
}

int zDirectory_posix::Create(const char* path) {
    return result_of(path && mkdir(path, kDirectoryMode) == 0);
}

int zDirectory_posix::Delete(const char* path) {
    return result_of(path && rmdir(path) == 0);
}

int zDirectory_posix::Open(const char* path) {
    fDirectory.reset(path ? opendir(path) : nullptr);
    fPath = path;
    return result_of(fDirectory != nullptr);
}

int zDirectory_posix::Restart() {
    const zString path(fPath);
    return Open(path);
}

int zDirectory_posix::GetNextFile(zString& name, unsigned int* flags, bool fullPath) {
    const dirent* entry = fDirectory ? readdir(fDirectory.get()) : nullptr;
    if (!entry)
        return result::kFailure;
    if (flags)
        *flags = flags_of(entry->d_name);
    if (fullPath)
        name.sprintf("%s/%s", static_cast<const char*>(fPath), entry->d_name);
    else
        name = entry->d_name;
    return result::kOk;
}

int zDirectory_posix::Close() {
    fDirectory.reset();
    return result::kOk;
}

unsigned int zDirectory_posix::flags_of(const char* name) const {
    struct stat info;
    const bool isDirectory = fstatat(dirfd(fDirectory.get()), name, &info, 0) == 0 && S_ISDIR(info.st_mode);
    return isDirectory ? kIsDirectory : 0;
}
