#include "zCmdLine.h"

#include <cstring>
#include <string>

#include "zRecord.h"
#include "zResult.h"

namespace {

constexpr int kNoArgument = -1;
constexpr char kProcessSerialNumber[] = "-psn_";

bool is_separator(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

bool is_switch(const char* text) {
    return text && *text == '-';
}

} // namespace

int zCmdLine::Parse(zRecord& record, int argc, const char** argv, bool skipFirst) {
    if (!argv)
        return result::kFailure;
    record.MakeEmpty();
    for (int i = 0; i < argc && argv[i]; ++i)
        add_arg(record, argv[i], skipFirst);
    return result::kOk;
}

int zCmdLine::Parse(zRecord& record, const char* line, bool skipFirst) {
    record.MakeEmpty();
    std::string argument;
    char quote = 0;
    const auto end_argument = [&] {
        add_arg(record, argument.c_str(), skipFirst);
        argument.clear();
    };
    for (; line && *line; ++line) {
        const char c = *line;
        const bool closes = c == quote;
        const bool opens = !quote && (c == '"' || c == '\'');
        if (opens || closes) {
            end_argument();
            quote = opens ? c : '\0';
        } else if (is_separator(c) && quote != '"') {
            end_argument();
        } else {
            argument += c;
        }
    }
    end_argument();
    return result::kOk;
}

void zCmdLine::add_arg(zRecord& record, const char* text, bool& skip) {
    if (ignore_argument(text) || is_only_whitespace(text, static_cast<int>(std::strlen(text))))
        return;
    if (skip) {
        skip = false;
        return;
    }
    record.SetCString(record.VariableCount() + 1, text);
}

const char* zCmdLine::Arg_IdxAsCString(const zRecord& record, int index, const char* defaultText) {
    const auto place = static_cast<unsigned int>(index);
    return place < record.VariableCount() ? get_arg1(record, index + 1) : defaultText;
}

const char* zCmdLine::Arg_AsCString(const zRecord& record, const char* name, const char* defaultText) {
    return record.AsCString(find_arg(record, name), defaultText);
}

int zCmdLine::Arg_AsInt32(const zRecord& record, const char* name, int defaultValue) {
    return record.AsInt32(find_arg(record, name), defaultValue);
}

bool zCmdLine::SwitchExists(const zRecord& record, char letter, bool) {
    const char* text = nullptr;
    for (int id = 1; (text = get_arg1(record, id)) != nullptr; ++id) {
        const char* next = get_arg1(record, id + 1);
        const bool isGroup = is_switch(text) && (!next || is_switch(next));
        if (isGroup && letter && std::strchr(text + 1, letter))
            return true;
    }
    return false;
}

const char* zCmdLine::get_arg1(const zRecord& record, int id) {
    return record.AsCString(id, nullptr);
}

bool zCmdLine::is_only_whitespace(const char* text, int length) {
    for (int i = 0; i < length; ++i) {
        if (!is_separator(text[i]) && text[i] != '\r')
            return false;
    }
    return true;
}

bool zCmdLine::ignore_argument(const char* text) {
    return std::strncmp(text, kProcessSerialNumber, std::strlen(kProcessSerialNumber)) == 0;
}

/// The id of the argument behind `name`, which may be one past the last; kNoArgument without `name`.
int zCmdLine::find_arg(const zRecord& record, const char* name) {
    const char* text = nullptr;
    for (int id = 1; (text = get_arg1(record, id)) != nullptr; ++id) {
        if (std::strcmp(text, name) == 0)
            return id + 1;
    }
    return kNoArgument;
}
