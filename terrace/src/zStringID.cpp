#include "zStringID.h"

#include <cstring>

#include "zBoot.h"
#include "zCritical.h"
#include "zTerrace.h"

namespace {

zBootIncludeModule gInclude(zTerrace::boot_Module);

/// Top byte of the ids that are made up for names.
constexpr int kMadeUpIDs = 0x73000000;

std::unique_ptr<zStringID> gDefault;

/// Bytes that a name takes, its entry in both trees included.
size_t cost_of(const char* text) {
    return std::strlen(text) + 1 + 2 * sizeof(zStringID_zOki::Entry);
}

} // namespace

zStringID::zStringID()
    : fByText(new zStringID_zOki(zStringID_zOki::kByText)),
      fByID(new zStringID_zOki(zStringID_zOki::kByID)),
      fCritical(zCritical::Factory(1)) {}

zStringID::~zStringID() {
    fByID.InOrderWalk(&zStringID_zOki::DeleteStringCallback, nullptr);
}

zStringID* zStringID::Default() {
    if (gDefault == nullptr)
        gDefault = std::make_unique<zStringID>();
    return gDefault.get();
}

void zStringID::Startup() {
    Default();
}

void zStringID::Shutdown() {
    gDefault.reset();
}

int zStringID::ID(const char* text) {
    return Default()->IDForString(text, false);
}

int zStringID::Add(int id, const char* text, [[maybe_unused]] bool unused) {
    if (text == nullptr)
        return -1;
    const zAutoCritical lock(fCritical.get());
    const int tiedTo = find_by_text(text);
    if (tiedTo == id)
        return 0;
    if (tiedTo != 0 || has_id(id) || !has_room_for(text, kMaxBytes))
        return -1;
    add_pair(id, text);
    return 0;
}

int zStringID::IDForString(const char* text, bool findOnly) {
    return find_or_make(text, findOnly ? 0 : kMaxBytes);
}

int zStringID::IDForDocumentString(const char* text) {
    return find_or_make(text, kMaxDocumentBytes);
}

const char* zStringID::StringForID(int id, const char* defaultText) {
    const zAutoCritical lock(fCritical.get());
    zStringID_zOki::Entry entry{id, nullptr};
    return fByID.Find(&entry, &entry, nullptr, 0) == 0 ? entry.text : defaultText;
}

int zStringID::generate_unique_id([[maybe_unused]] const char* text) {
    const zAutoCritical lock(fCritical.get());
    int id = 0;
    do
        id = fNextUnique++ | kMadeUpIDs;
    while (has_id(id));
    return id;
}

/// 0 when the text is unknown.
int zStringID::find_by_text(const char* text) {
    zStringID_zOki::Entry entry{0, const_cast<char*>(text)};
    return fByText.Find(&entry, &entry, nullptr, 0) == 0 ? entry.id : 0;
}

bool zStringID::has_id(int id) {
    zStringID_zOki::Entry entry{id, nullptr};
    return fByID.Find(&entry, &entry, nullptr, 0) == 0;
}

int zStringID::find_or_make(const char* text, size_t maxBytes) {
    if (text == nullptr)
        return 0;
    const zAutoCritical lock(fCritical.get());
    int id = find_by_text(text);
    if (id == 0 && has_room_for(text, maxBytes)) {
        id = generate_unique_id(text);
        add_pair(id, text);
    }
    return id;
}

bool zStringID::has_room_for(const char* text, size_t maxBytes) const {
    return fBytes + cost_of(text) <= maxBytes;
}

void zStringID::add_pair(int id, const char* text) {
    const size_t size = std::strlen(text) + 1;
    fBytes += cost_of(text);
    const zStringID_zOki::Entry entry{id, new char[size]};
    std::memcpy(entry.text, text, size);
    fByText.Add(&entry, false);
    fByID.Add(&entry, false);
}
