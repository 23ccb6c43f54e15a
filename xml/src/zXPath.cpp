#include "zXPath.h"

#include <string>
#include <string_view>

#include "zRecord.h"

namespace {

constexpr char kSeparator = '/';
constexpr std::string_view kAnyName = "*";
constexpr char kNoName[] = "xx"; ///< What a record without an element name is called.

struct Step {
    std::string_view name;
    std::string_view predicate;
};

/// The attribute and text of a predicate; without an attribute there is no condition.
struct Condition {
    std::string attribute;
    std::string value;
};

/// Takes the step behind the separator off the path.
Step take_step(std::string_view& path) {
    path.remove_prefix(1);
    Step step;
    step.name = path.substr(0, path.find_first_of("[/"));
    path.remove_prefix(step.name.size());
    if (!path.empty() && path.front() == '[') {
        const size_t end = path.find(']');
        step.predicate = path.substr(1, end == path.npos ? end : end - 1);
        path.remove_prefix(end == path.npos ? path.size() : end + 1);
    }
    return step;
}

/// Reads "@name='value'"; nothing at all is fine too. False for any other form.
bool parse_predicate(std::string_view text, Condition& condition) {
    if (text.empty())
        return true;
    const size_t equals = text.find("='");
    if (text.front() != '@' || equals == text.npos || text.back() != '\'')
        return false;
    const size_t valueStart = equals + 2;
    if (equals < 2 || valueStart + 1 >= text.size())
        return false;
    condition.attribute = text.substr(1, equals - 1);
    condition.value = text.substr(valueStart, text.size() - 1 - valueStart);
    return true;
}

bool has_name(const zRecord& record, std::string_view name) {
    return name == kAnyName || name == record.AsCString(zRecord::kXMLTag, kNoName);
}

bool meets(const zRecord& record, const Condition& condition) {
    if (condition.attribute.empty())
        return true;
    // A name that no document has used is not made known for the sake of a question.
    const int id = zStringID::Default()->IDForString(condition.attribute.c_str(), true);
    char buf[64];
    const char* text = id ? record.AsCString(id, nullptr, &buf) : nullptr;
    return text && condition.value == text;
}

const zRecord* find_child(const zRecord& parent, std::string_view name, const Condition& condition) {
    for (const zRecord* child : parent.Children()) {
        if (has_name(*child, name) && meets(*child, condition))
            return child;
    }
    return nullptr;
}

} // namespace

const zRecord* zXPath::Exact(const zRecord* start, const char* path) {
    const zRecord* current = start;
    std::string_view rest(path);
    for (bool first = true; current && !rest.empty() && rest.front() == kSeparator; first = false) {
        const Step step = take_step(rest);
        Condition condition;
        if (!parse_predicate(step.predicate, condition))
            return nullptr;
        if (!first || !has_name(*current, step.name))
            current = find_child(*current, step.name, condition);
    }
    return current;
}
