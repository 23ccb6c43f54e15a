#include "cMultipartRecord.h"

#include <cstring>

#include "zRecord.h"

namespace {

constexpr const char* kOffsetName = "__data_offset";
constexpr const char* kSizeName = "__data_size";
/// A section's first two variables are its place and size; its headers follow.
constexpr int kFirstHeader = 2;

} // namespace

int cMultipartRecord::Section::AddHeader(const char* name, const char* value) {
    if (fRecord == nullptr)
        return -1;
    fRecord->SetCString(name, value, 0);
    return 0;
}

void cMultipartRecord::Section::SetDataSize(int size) {
    if (fRecord != nullptr)
        fRecord->SetInt32(kSizeName, size, 0);
}

void cMultipartRecord::Section::SetDataOffset(int offset) {
    if (fRecord != nullptr)
        fRecord->SetInt32(kOffsetName, offset, 0);
}

int cMultipartRecord::Section::GetDataSize() const {
    return fRecord == nullptr ? 0 : fRecord->AsInt32(kSizeName, 0);
}

int cMultipartRecord::Section::GetDataOffset() const {
    return fRecord == nullptr ? 0 : fRecord->AsInt32(kOffsetName, 0);
}

int cMultipartRecord::Section::HeaderCount() const {
    return fRecord == nullptr ? -1 : static_cast<int>(fRecord->VariableCount()) - kFirstHeader;
}

int cMultipartRecord::Section::HeaderByIndex(int index, zString& name, zString& value) const {
    name.Clear();
    value.Clear();
    if (index < 0 || index >= HeaderCount())
        return -1;
    const unsigned int id = fRecord->VariableID(static_cast<unsigned int>(index + kFirstHeader));
    char number[64] = {};
    name = fRecord->VariableName(static_cast<unsigned int>(index + kFirstHeader));
    value = fRecord->AsCString(id, "", &number);
    return 0;
}

int cMultipartRecord::Section::HeaderSizeByIndex(int index, int* nameLength, int* valueLength) const {
    zString name;
    zString value;
    if (HeaderByIndex(index, name, value) != 0)
        return -1;
    if (nameLength != nullptr)
        *nameLength = static_cast<int>(name.Length());
    if (valueLength != nullptr)
        *valueLength = static_cast<int>(value.Length());
    return 0;
}

zString cMultipartRecord::Section::HeaderByName(const char* name, const char* missing) const {
    char number[64] = {};
    return zString(fRecord == nullptr ? missing : fRecord->AsCString(name, missing, &number));
}

bool cMultipartRecord::Section::HasHeader(const char* name, const char* value) const {
    return fRecord != nullptr && fRecord->ExistsName(name) && strcmp(HeaderByName(name, ""), value) == 0;
}

int cMultipartRecord::AddSection(int size, const char* type) {
    AppendSectionRecord(size, type);
    return fRecord->ChildCount() - 1;
}

zRecord& cMultipartRecord::AppendSectionRecord(int size, const char* type) {
    zRecord* record = new zRecord;
    Section section(record);
    section.SetDataOffset(0);
    section.SetDataSize(size);
    if (type != nullptr)
        section.AddHeader(kContentTypeName, type);
    fRecord->AddChild(record);
    return *record;
}

zString cMultipartRecord::GetBoundary() const {
    char number[64] = {};
    return zString(fRecord->AsCString(kBoundaryName, kDefaultBoundary, &number));
}

zRecord* cMultipartRecord::GetSectionRecord(int index) const {
    return index < 0 ? nullptr : fRecord->Child(static_cast<unsigned int>(index));
}

int cMultipartRecord::GetSection(Section& section, int index) const {
    zRecord* record = GetSectionRecord(index);
    section = Section(record);
    return record == nullptr ? -1 : 0;
}

int cMultipartRecord::FindSectionBySectionHeaderValue(Section& section, const char* name,
                                                      const char* value) const {
    for (int i = 0; GetSection(section, i) == 0; ++i)
        if (section.HasHeader(name, value))
            return 0;
    return -1;
}

void cMultipartRecord::AddSectionHeader(int index, const char* name, const char* value) {
    Section section;
    GetSection(section, index);
    section.AddHeader(name, value);
}
