#include "zXML.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include "zBoot.h"
#include "zMemoryStream.h"
#include "zOS.h"
#include "zTerrace.h"

namespace {

void startup() {
    zBoot::Depends(zTerrace::kModuleID, &zTerrace::boot_Module);
    zStringID::Default()->Add(static_cast<int>(zXML::kXMLText), zXML::kTextNodeTag, false);
}

zBoot gBoot(&startup, nullptr, zXML::kModuleID);

bool is_text_node(const zRecord& record) {
    return record.ExistsID(zXML::kXMLText);
}

bool equals(const zRecord& record, unsigned int id, const char* text) {
    char buf[64];
    const char* own = record.AsCString(id, nullptr, &buf);
    return own != nullptr && std::strcmp(own, text) == 0;
}

/// Deletes the children that `remove` says and calls `keep` for the others.
template <typename Remove, typename Keep>
void sift_children(zRecord& record, Remove remove, Keep keep) {
    for (zListEntry<zRecord*>* entry = record.Children().First(); entry != nullptr;) {
        zRecord* child = entry->value;
        entry = entry->Next();
        if (remove(*child))
            delete record.RemoveChildPtr(child);
        else
            keep(*child);
    }
}

} // namespace

void zXML::boot_Module() {}

const zRecord* zXML::LocateTag(const zRecord& record, unsigned int id, const char* text) {
    if (equals(record, id, text))
        return &record;
    for (const zRecord* child : record.Children()) {
        if (const zRecord* found = LocateTag(*child, id, text))
            return found;
    }
    return nullptr;
}

zRecord* zXML::LocateTag(zRecord& record, unsigned int id, const char* text) {
    return const_cast<zRecord*>(LocateTag(static_cast<const zRecord&>(record), id, text));
}

zRecord* zXML::GetChild(zRecord& record, int index) {
    for (zRecord* child : record.Children()) {
        if (!is_text_node(*child) && index-- == 0)
            return child;
    }
    return nullptr;
}

void zXML::SetText(zRecord& record, const char* text, int length) {
    record.SetCString(zRecord::kXMLTag, kTextNodeTag);
    if (length < 0) {
        record.SetCString(kXMLText, text);
        return;
    }
    // A copy, because the old text would pass for equal if it only began with the new one.
    const zString copy(text, static_cast<unsigned int>(length));
    record.SetCString(kXMLText, copy);
}

void zXML::AddTextChild(zRecord& record, const char* text, int length) {
    auto* child = new zRecord;
    SetText(*child, text, length);
    record.AddChild(child);
}

const char* zXML::GetText(const zRecord& record, int index) {
    for (const zRecord* child : record.Children()) {
        if (equals(*child, zRecord::kXMLTag, kTextNodeTag) && index-- == 0)
            return child->AsCString(kXMLText, "");
    }
    return "";
}

void zXML::RemoveEmptyRecords(zRecord& record, bool recurse) {
    sift_children(
        record, [](const zRecord& child) { return child.IsEmpty(); },
        [recurse](zRecord& child) {
            if (recurse)
                RemoveEmptyRecords(child, true);
        });
}

void zXML::StripText(zRecord& record, bool recurse) {
    sift_children(record, is_text_node, [recurse](zRecord& child) {
        if (recurse)
            StripText(child, true);
    });
}

void zXML::StripTags(zRecord& record, bool recurse) {
    record.RemoveXMLTag();
    record.RemoveID(kXMLText);
    if (!recurse)
        return;
    for (zRecord* child : record.Children())
        StripTags(*child, true);
}

void zXML::StripNamedTags(zRecord& record, const char* tag, bool recurse) {
    if (equals(record, zRecord::kXMLTag, tag))
        record.RemoveXMLTag();
    if (!recurse)
        return;
    for (zRecord* child : record.Children())
        StripNamedTags(*child, tag, true);
}

void zXML::RemoveOSSpecificAreas(zRecord& record) {
    static constexpr char kCondition[] = "only_for_os";
    const auto condition = static_cast<unsigned int>(zStringID::ID(kCondition));
    sift_children(
        record,
        [condition](const zRecord& child) {
            return child.ExistsID(condition) && !equals(child, condition, zOS::GetFamilyName());
        },
        [condition](zRecord& child) {
            child.RemoveID(condition);
            RemoveOSSpecificAreas(child);
        });
}

void zXML::DEBUG_PrintAsXML(const zRecord* record) {
    zMemoryStream stream;
    WriteStream(kAttributes | kText, record, &stream, "\n", 0);
    char* text = nullptr;
    unsigned int size = 0;
    stream.Seek(0, zStream::kFromStart);
    if (stream.ReadAll(&text, &size) == 0) {
        std::fwrite(text, 1, size, stdout);
        stream.FreeReadAll(text);
    }
}
