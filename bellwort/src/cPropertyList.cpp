#include "cPropertyList.h"

#include <charconv>
#include <cstring>

#include "zResult.h"
#include "zXML.h"

int cPropertyList::Parse(const char* text, int length) {
    fDocument.MakeEmpty();
    if (zXML::ParseBuffer(zXML::kText | zXML::kSkipSpace, &fDocument, text, length) == 0 &&
        is(&fDocument, "plist"))
        return result::kOk;
    fDocument.MakeEmpty();
    return result::kFailure;
}

const zRecord* cPropertyList::Root() const {
    return fDocument.Child(0);
}

bool cPropertyList::is(const zRecord* value, const char* tag) {
    return value && std::strcmp(value->AsCString(zRecord::kXMLTag, ""), tag) == 0;
}

bool cPropertyList::IsDictionary(const zRecord* value) {
    return is(value, "dict");
}

bool cPropertyList::IsArray(const zRecord* value) {
    return is(value, "array");
}

const zRecord* cPropertyList::Find(const zRecord* dictionary, const char* key) {
    if (!IsDictionary(dictionary))
        return nullptr;
    bool found = false;
    for (const zRecord* element : Elements(*dictionary)) {
        if (found)
            return element;
        found = is(element, "key") && std::strcmp(zXML::GetText(*element, 0), key) == 0;
    }
    return nullptr;
}

bool cPropertyList::AsInt32(const zRecord* value, int& number) {
    if (!is(value, "integer") && !is(value, "real"))
        return false;
    // A double holds every 32-bit integer, and tells a fraction.
    const char* text = zXML::GetText(*value, 0);
    const char* end = text + std::strlen(text);
    double read = 0;
    const auto [stop, error] = std::from_chars(text, end, read);
    if (error != std::errc() || stop != end || !(read >= INT32_MIN && read <= INT32_MAX))
        return false;
    const int whole = static_cast<int>(read);
    if (whole != read)
        return false;
    number = whole;
    return true;
}

bool cPropertyList::AsBool(const zRecord* value, bool& truth) {
    if (!is(value, "true") && !is(value, "false"))
        return false;
    truth = is(value, "true");
    return true;
}

bool cPropertyList::AsString(const zRecord* value, zString& text) {
    if (!is(value, "string"))
        return false;
    text = zXML::GetText(*value, 0);
    return true;
}
